#include "SimulatedYear.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
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
    const std::size_t tenth = std::max<std::size_t>(usages.size() / 10, 1);
    for (std::size_t from = 0; from + tenth <= usages.size(); from += tenth) {
        const auto begin = usages.begin() + static_cast<std::ptrdiff_t>(from);
        const auto least = std::min_element(begin, begin + static_cast<std::ptrdiff_t>(tenth),
                                            [](const auto& a, const auto& b) { return a.heapBytes < b.heapBytes; });
        std::cout << "from day " << from + 1 << ": at least " << least->heapBytes << " bytes of heap, "
                  << least->residentBytes << " resident, " << least->fileDescriptors << " descriptors, "
                  << least->threads << " threads\n";
    }
    std::cout << "most files " << year.getProfileCheck().getMostFiles() << ", largest file "
              << year.getProfileCheck().getLargestFile() << " bytes, highest number of a file moved aside "
              << year.getProfileCheck().getHighestNumber() << "\n";
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
    if (days >= 365) {
        EXPECT_GT(year.getProfileCheck().getHighestNumber(), 5U) << "the limit of files moved aside was not reached";
    }
    EXPECT_EQ(year.findGrowth(), "") << "seed " << seed << ", " << days << " days";
}

} // namespace simulated_year

int main(int argc, char** argv) {
    testing_host::ProcessUsage::makeHeapExact(argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
