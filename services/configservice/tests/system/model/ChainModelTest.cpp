#include "ByteSource.h"
#include "ChainScript.h"
#include "ChainStep.h"
#include "Comparison.h"
#include "UnsyncedFiles.h"

#include <TemporaryProfile.h>
#include <Watchdog.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace config_model {

namespace {

// 2,000 sequences in total; under ctest each case is a separate process.
constexpr std::uint32_t cases = 20;
constexpr std::uint32_t sequencesOfOneCase = 100;
constexpr std::size_t bytesForOneSequence = 220;

std::string explain(const std::vector<ChainStep>& steps) {
    const auto fewest =
        shrink(steps, [](std::span<const ChainStep> candidate) { return !compareChains(candidate).empty(); });
    return compareChains(fewest);
}

class ConfigStoreManagerAgainstItsModel : public testing::TestWithParam<std::uint32_t> {};

} // namespace

TEST_P(ConfigStoreManagerAgainstItsModel, ReturnsAndAnnouncesTheSameInRandomSequences) {
    const testing_host::Watchdog watchdog(std::chrono::seconds(100));
    const testing_host::TemporaryProfile profile;
    const UnsyncedFiles files;
    for (std::uint32_t i = 0; i < sequencesOfOneCase; ++i) {
        const auto seed = GetParam() * sequencesOfOneCase + i;
        const auto steps = readChainSteps(makeBytes(seed, bytesForOneSequence));
        ASSERT_TRUE(compareChains(steps).empty()) << "seed " << seed << "\n" << explain(steps);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ConfigStoreManagerAgainstItsModel, testing::Range(0U, cases));

} // namespace config_model
