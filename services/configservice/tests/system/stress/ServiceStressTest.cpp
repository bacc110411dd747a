#include "ServiceUnderStress.h"
#include "UnsyncedFiles.h"

#include <InMemoryRegistry.h>
#include <TemporaryProfile.h>
#include <Watchdog.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>

namespace config_model {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t livesOfTheSuite = 4;
constexpr std::size_t callsOfOneThread = 120;

/// Returns the duration set by `./test stress`; in the suite a count limits the test.
std::chrono::seconds wantedTime() {
    const char* const text = std::getenv("LUMORA_STRESS_SECONDS");
    return std::chrono::seconds(text == nullptr ? 0 : std::atol(text));
}

} // namespace

TEST(ServiceStress, SupportsConcurrentCallersOfEveryKindAndAnEndDuringTheirWork) {
    const auto end = Clock::now() + wantedTime();
    int reactions = 0;
    std::uint32_t life = 0;
    for (; life < livesOfTheSuite || Clock::now() < end; ++life) {
        SCOPED_TRACE("life " + std::to_string(life));
        const testing_host::Watchdog watchdog(std::chrono::seconds(110));
        const testing_host::TemporaryProfile profile;
        const testing_host::InMemoryRegistry::Installed registry;
        const UnsyncedFiles files;
        ServiceUnderStress service(life * 100);
        service.live(callsOfOneThread);
        reactions += service.countReactions();
        ASSERT_THAT(service.getComplaints(), testing::IsEmpty());
        ASSERT_TRUE(service.end()) << "the service is still referenced";
    }
    EXPECT_GT(reactions, 0);
    RecordProperty("lives", static_cast<int>(life));
    RecordProperty("reactions", reactions);
}

} // namespace config_model
