#include "ServiceLife.h"

#include <registry/RegistryFiles.h>

#include <ProcessUsage.h>
#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

namespace long_life {

using testing_host::ProcessUsage;

namespace {

constexpr std::size_t cyclesOfTheSuite = 96;
/// Whole rounds of everything that is done every few cycles, so that the process stands where it stood.
constexpr std::size_t cyclesToWarmUp = 32;
constexpr std::size_t cyclesOfOneLife = 8;

/// Less than the suite's cycles could leave behind, where a single lost byte takes a block of 32. Up to a few hundred
/// are spare room that comes and goes.
constexpr std::size_t heapTolerance = 2048;
constexpr std::size_t residentTolerance = std::size_t{1} << 20;

constexpr const char* policy =
    "Windows Registry Editor Version 5.00\n\n"
    "[HKEY_CURRENT_USER\\Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC]\n"
    "\"policy\"=\"in force\"\n";

/// `./test longlife` asks for more.
std::size_t wantedCycles() {
    const char* const text = std::getenv("LUMORA_LONG_LIFE_CYCLES");
    const std::size_t wanted = text == nullptr ? cyclesOfTheSuite : std::strtoul(text, nullptr, 10);
    return (wanted + cyclesToWarmUp - 1) / cyclesToWarmUp * cyclesToWarmUp;
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
        const std::size_t cycles = cyclesToWarmUp + wantedCycles();
        ProcessUsage warm;
        for (std::size_t number = 0; number < cycles; ++number) {
            if (number == cyclesToWarmUp) {
                warm = ProcessUsage::measure();
            }
            play(number);
            ASSERT_FALSE(HasFailure()) << "in cycle " << number;
        }
        const auto end = ProcessUsage::measure();
        show(cyclesToWarmUp, warm);
        show(cycles, end);
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
