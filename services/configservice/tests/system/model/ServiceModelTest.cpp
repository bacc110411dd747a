#include "ByteSource.h"
#include "Comparison.h"
#include "ServiceScript.h"
#include "ServiceStep.h"

#include <Watchdog.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace config_model {

namespace {

// 2,000 sequences in total; under ctest each case is a separate process.
constexpr std::uint32_t cases = 20;
constexpr std::uint32_t sequencesOfOneCase = 100;
constexpr std::size_t bytesForOneSequence = 80;

std::string explain(const std::vector<ServiceStep>& steps) {
    const auto fewest =
        shrink(steps, [](std::span<const ServiceStep> candidate) { return !compareServices(candidate).empty(); });
    return compareServices(fewest);
}

class ConfigServiceAgainstItsModel : public testing::TestWithParam<std::uint32_t> {};

} // namespace

TEST_P(ConfigServiceAgainstItsModel, ReturnsAndFiresTheSameInRandomSequences) {
    const testing_host::Watchdog watchdog(std::chrono::seconds(100));
    for (std::uint32_t i = 0; i < sequencesOfOneCase; ++i) {
        const auto seed = GetParam() * sequencesOfOneCase + i;
        const auto steps = readServiceSteps(makeBytes(seed, bytesForOneSequence));
        ASSERT_TRUE(compareServices(steps).empty()) << "seed " << seed << "\n" << explain(steps);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ConfigServiceAgainstItsModel, testing::Range(0U, cases));

} // namespace config_model
