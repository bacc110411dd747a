#include "ServiceLife.h"

#include <registry/RegistryFiles.h>

#include <ProcessUsage.h>
#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <limits>
#include <optional>
#include <vector>

namespace long_life {

using testing_host::ProcessUsage;

namespace {

constexpr std::size_t cyclesOfTheSuite = 96;
/// Whole rounds of everything that is done every few cycles, so that the process stands where it stood.
constexpr std::size_t cyclesToWarmUp = 32;
constexpr std::size_t cyclesOfOneLife = 8;

/// The cycles are measured in so many parts: what a thread or a library takes once shows in one of them, what a cycle
/// leaves behind in all.
constexpr std::size_t partCount = 3;
/// Of heap, for each cycle: a single lost byte takes a block of 32.
constexpr std::size_t lossOfCycle = 16;
constexpr std::size_t residentTolerance = std::size_t{1} << 20;

constexpr const char* policy =
    "Windows Registry Editor Version 5.00\n\n"
    "[HKEY_CURRENT_USER\\Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC]\n"
    "\"policy\"=\"in force\"\n";

/// `./test longlife` asks for more.
std::size_t wantedCycles() {
    const char* const text = std::getenv("LUMORA_LONG_LIFE_CYCLES");
    const std::size_t wanted = text == nullptr ? cyclesOfTheSuite : std::strtoul(text, nullptr, 10);
    constexpr std::size_t round = partCount * cyclesToWarmUp;
    return (wanted + round - 1) / round * round;
}

/// The least that one part added.
std::size_t leastGrowth(const std::vector<ProcessUsage>& measured) {
    std::size_t least = std::numeric_limits<std::size_t>::max();
    for (std::size_t i = 1; i < measured.size(); ++i) {
        const std::size_t before = measured[i - 1].heapBytes;
        least = std::min(least, std::max(measured[i].heapBytes, before) - before);
    }
    return least;
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

    /// `play` runs the cycle of that number.
    static void expectFlat(const std::function<void(std::size_t)>& play) {
        const std::size_t part = wantedCycles() / partCount;
        const std::size_t cycles = cyclesToWarmUp + wantedCycles();
        std::vector<ProcessUsage> measured;
        for (std::size_t number = 0; number < cycles; ++number) {
            play(number);
            ASSERT_FALSE(HasFailure()) << "in cycle " << number;
            if (const std::size_t played = number + 1;
                played >= cyclesToWarmUp && (played - cyclesToWarmUp) % part == 0) {
                measured.push_back(ProcessUsage::measure());
                show(played, measured.back());
            }
        }
        const ProcessUsage& warm = measured.front();
        const ProcessUsage& end = measured.back();
        EXPECT_LT(leastGrowth(measured), part * lossOfCycle);
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

TEST_F(LongLife, OneServiceHoldsNoMoreAfterAllItsCycles) {
    ServiceLife life(timers);
    expectFlat([&life](std::size_t number) { life.playCycle(number); });
}

TEST_F(LongLife, ManyServicesOneAfterTheOtherLeaveNothingBehind) {
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
