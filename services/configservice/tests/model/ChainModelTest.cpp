#include "ByteSource.h"
#include "ChainScript.h"
#include "ChainStep.h"
#include "Comparison.h"

#include <TemporaryProfile.h>
#include <Watchdog.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace config_model {

namespace {

constexpr std::uint32_t sequences = 2000;
constexpr std::size_t bytesForOneSequence = 220;

std::string explain(const std::vector<ChainStep>& steps) {
    const auto fewest = shrink(
        steps, [](std::span<const ChainStep> candidate) { return !compareChains(candidate).empty(); });
    return compareChains(fewest);
}

} // namespace

TEST(ConfigStoreManagerAgainstItsModel, AnswersAndAnnouncesTheSameInRandomSequences) {
    const testing_host::Watchdog watchdog(std::chrono::seconds(110));
    const testing_host::TemporaryProfile profile;
    for (std::uint32_t seed = 1; seed <= sequences; ++seed) {
        const auto steps = readChainSteps(makeBytes(seed, bytesForOneSequence));
        ASSERT_TRUE(compareChains(steps).empty()) << "seed " << seed << "\n" << explain(steps);
    }
}

} // namespace config_model
