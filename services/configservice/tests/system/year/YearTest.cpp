#include "SimulatedYear.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>

namespace simulated_year {

namespace {

constexpr std::size_t daysOfTheSuite = 100;

std::size_t numberFrom(const char* variable, std::size_t otherwise) {
    const char* const text = std::getenv(variable);
    return text == nullptr ? otherwise : std::strtoul(text, nullptr, 10);
}

void show(const SimulatedYear& year) {
    for (const auto& [kind, count] : year.getEvents()) {
        std::cout << count << " " << kind << "\n";
    }
    const auto& usages = year.getUsage().getUsages();
    for (std::size_t day = usages.size() / 10; day < usages.size(); day += usages.size() / 5) {
        const auto* usage = &usages.at(day);
        std::cout << "day " << day + 1 << ": " << usage->heapBytes << " bytes of heap, " << usage->residentBytes
                  << " resident, " << usage->fileDescriptors << " descriptors, " << usage->threads << " threads\n";
    }
    std::cout << "most files " << year.getProfileCheck().getMostFiles() << ", largest file "
              << year.getProfileCheck().getLargestFile() << " bytes\n";
}

} // namespace

TEST(SimulatedYear, EveryDayBehavesLikeTheModelAndLeavesNothingBehind) {
    const auto days = numberFrom("LUMORA_YEAR_DAYS", daysOfTheSuite);
    const auto seed = numberFrom("LUMORA_YEAR_SEED", 1);
    SimulatedYear year(static_cast<std::uint32_t>(seed), days);
    for (std::size_t day = 1; day <= days; ++day) {
        const auto problem = year.playDay();
        if (!problem.empty()) {
            FAIL() << problem;
        }
    }
    show(year);
    EXPECT_EQ(year.findGrowth(), "") << "seed " << seed << ", " << days << " days";
}

} // namespace simulated_year

int main(int argc, char** argv) {
    testing_host::ProcessUsage::makeHeapExact(argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
