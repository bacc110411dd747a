#include "ConcurrentService.h"
#include "LinearizabilityChecker.h"
#include "UnsyncedFiles.h"

#include <Watchdog.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>

namespace config_model {

namespace {

// Under ctest each case is a separate process.
constexpr std::uint32_t cases = 10;
constexpr std::uint32_t historiesOfTheSuite = 1000;

std::uint32_t readNumber(const char* name, std::uint32_t fallback) {
    const char* const text = std::getenv(name);
    return text == nullptr ? fallback : static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10));
}

/// Makes the calls that this random number determines, and returns what is wrong with them.
std::string checkHistory(std::uint32_t seed) {
    const testing_host::Watchdog watchdog(std::chrono::seconds(110));
    const auto script = makeScript(seed);
    ConcurrentService service(script.policy);
    const auto history = service.run(script);
    std::string problems = LinearizabilityChecker(history).check();
    for (const auto& line : service.findStaleRecords()) {
        problems += "The record differs from the lookup: " + line + "\n";
    }
    return problems;
}

class ConcurrentHistories : public testing::TestWithParam<std::uint32_t> {};

} // namespace

TEST_P(ConcurrentHistories, HaveAnOrderThatTheModelExplains) {
    const UnsyncedFiles files;
    const auto count = std::max(1U, readNumber("LUMORA_HISTORIES", historiesOfTheSuite) / cases);
    const char* const onlySeed = std::getenv("LUMORA_HISTORY_SEED");
    for (std::uint32_t i = 0; i < count; ++i) {
        const auto seed = onlySeed == nullptr ? GetParam() * count + i : readNumber("LUMORA_HISTORY_SEED", 0);
        const auto problems = checkHistory(seed);
        ASSERT_TRUE(problems.empty()) << "LUMORA_HISTORY_SEED=" << seed << ", history " << i << "\n" << problems;
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ConcurrentHistories, testing::Range(0U, cases));

} // namespace config_model
