#include "ServiceLife.h"

#include <registry/RegistryFiles.h>

#include <ProcessUsage.h>
#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <limits>
#include <vector>

namespace long_life {

using testing_host::ProcessUsage;

namespace {

/// Complete rounds of all periodic operations, so that the process returns to its initial state.
constexpr std::size_t cyclesOfOneRound = 32;
constexpr std::size_t cyclesOfOneLife = 8;

/// A leak of each cycle appears in each stretch; a buffer that grows once does not. A leak of one byte per cycle is a
/// kilobyte in the shortest stretch, because the heap allocates blocks of 32 bytes.
constexpr std::size_t stretches = 6;
constexpr std::int64_t heapToleranceOfEveryStretch = 512;
constexpr std::size_t heapTolerance = std::size_t{16} << 10;
constexpr std::size_t residentTolerance = std::size_t{1} << 20;

constexpr const char* policy =
    "Windows Registry Editor Version 5.00\n\n"
    "[HKEY_CURRENT_USER\\Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC]\n"
    "\"policy\"=\"in force\"\n";

/// `./test longlife` sets more than one round.
std::size_t cyclesOfOneStretch() {
    const char* const text = std::getenv("LUMORA_LONG_LIFE_CYCLES");
    const std::size_t wanted = text == nullptr ? 0 : std::strtoul(text, nullptr, 10);
    const std::size_t rounds = (wanted + stretches * cyclesOfOneRound - 1) / (stretches * cyclesOfOneRound);
    return std::max<std::size_t>(rounds, 1) * cyclesOfOneRound;
}

void show(std::size_t cycles, const ProcessUsage& usage) {
    std::cout << "after " << cycles << " cycles: " << usage.heapBytes << " bytes of heap, " << usage.residentBytes
              << " resident, " << usage.fileDescriptors << " descriptors, " << usage.threads << " threads\n";
}

} // namespace

class LongLife : public testing::Test {
protected:
    LongLife() {
        testing_host::writeFile(administrator / "HKEY_CURRENT_USER" / "policy.reg", policy);
        zel::registry::overrideRegistry(zel::registry::makeFileRegistry({administrator.string(), {}}));
    }
    ~LongLife() override { zel::registry::overrideRegistry(nullptr); }

    using Play = std::function<void(std::size_t)>;

    /// Measures the usage over the stretches; `play` runs the cycle of the given number.
    static void expectFlat(const Play& play) {
        const std::size_t length = cyclesOfOneStretch();
        std::vector<ProcessUsage> usages;
        usages.reserve(stretches + 1); // must not allocate during the measurement
        for (std::size_t number = 0; number <= cyclesOfOneRound + stretches * length; ++number) {
            if (number >= cyclesOfOneRound && (number - cyclesOfOneRound) % length == 0) {
                usages.push_back(ProcessUsage::measure());
                show(number, usages.back());
            }
            if (number < cyclesOfOneRound + stretches * length) {
                play(number);
            }
            ASSERT_FALSE(HasFailure()) << "in cycle " << number;
        }
        expectNoGrowth(usages);
    }

    static void expectNoGrowth(const std::vector<ProcessUsage>& usages) {
        auto smallest = std::numeric_limits<std::int64_t>::max();
        for (std::size_t i = 1; i < usages.size(); ++i) {
            smallest = std::min(smallest, static_cast<std::int64_t>(usages[i].heapBytes - usages[i - 1].heapBytes));
        }
        const auto& warm = usages.front();
        const auto& end = usages.back();
        EXPECT_LE(smallest, heapToleranceOfEveryStretch) << "the heap grows in every part of the run";
        EXPECT_LE(end.heapBytes, warm.heapBytes + heapTolerance);
        EXPECT_EQ(end.fileDescriptors, warm.fileDescriptors);
        EXPECT_EQ(end.threads, warm.threads);
        if (!ProcessUsage::isInstrumented()) {
            EXPECT_LE(end.residentBytes, warm.residentBytes + residentTolerance);
        }
    }

    const testing_host::TemporaryProfile profile;
    const std::filesystem::path administrator = profile.root() / "administrator";
    testing_host::CountedTimers timers;
};

TEST_F(LongLife, OneServiceLeaksNothingInManyCycles) {
    ServiceLife life(timers);
    expectFlat([&life](std::size_t number) { life.playCycle(number); });
}

TEST_F(LongLife, ManyConsecutiveServicesLeakNothing) {
    std::optional<ServiceLife> life;
    expectFlat([&](std::size_t number) {
        if (!life) {
            life.emplace(timers);
        }
        life->playCycle(number);
        if ((number + 1) % cyclesOfOneLife == 0) {
            life.reset();
            EXPECT_TRUE(timers.settle());
            EXPECT_EQ(timers.getPendingCount(), 0U);
        }
    });
}

} // namespace long_life

int main(int argc, char** argv) {
    testing_host::ProcessUsage::makeHeapExact(argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
