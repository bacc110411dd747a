#include "ConcurrentService.h"
#include "LinearizabilityChecker.h"
#include "UnsyncedFiles.h"

#include <Watchdog.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iostream>

namespace config_model {

namespace {

// Under ctest each case is a separate process.
constexpr std::uint32_t cases = 10;
constexpr std::uint32_t historiesOfTheSuite = 1000;

std::uint32_t readNumber(const char* name, std::uint32_t fallback) {
    const char* const text = std::getenv(name);
    return text == nullptr ? fallback : static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10));
}

/// Makes the calls that this number determines, and returns what is wrong with them.
std::string checkHistory(std::uint32_t number) {
    const auto script = makeScript(number);
    History history;
    std::string staleRecords;
    {
        const testing_host::Watchdog watchdog; // not for the search, which has a limit of its own
        ConcurrentService service(script.policy);
        history = service.run(script);
        for (const auto& line : service.findStaleRecords()) {
            staleRecords += "The record differs from the lookup: " + line + "\n";
        }
    }
    return LinearizabilityChecker(history).check() + staleRecords;
}

class ConcurrentHistories : public testing::TestWithParam<std::uint32_t> {};

} // namespace

TEST_P(ConcurrentHistories, HaveAnOrderThatTheModelExplains) {
    const UnsyncedFiles files;
    const auto count = std::max(1U, readNumber("LUMORA_HISTORIES", historiesOfTheSuite) / cases);
    const bool repeats = std::getenv("LUMORA_REPEATED_HISTORY") != nullptr;
    const auto first =
        repeats ? readNumber("LUMORA_REPEATED_HISTORY", 0) : readNumber("LUMORA_FIRST_HISTORY", 0) + GetParam() * count;
    for (std::uint32_t i = 0; i < count; ++i) {
        const auto number = repeats ? first : first + i;
        const auto problems = checkHistory(number);
        ASSERT_TRUE(problems.empty()) << "LUMORA_REPEATED_HISTORY=" << number << ", run " << i << "\n" << problems;
    }
    if (repeats) {
        std::cout << "history " << first << ", " << count << " times\n";
    } else {
        std::cout << "histories " << first << " to " << first + count - 1 << "\n";
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ConcurrentHistories, testing::Range(0U, cases));

} // namespace config_model
