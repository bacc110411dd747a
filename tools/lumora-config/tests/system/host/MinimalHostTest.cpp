#include "Program.h"

#include <gmock/gmock.h>

namespace program_test {

using testing::HasSubstr;

namespace {

Outcome runHost(const Profile& profile, const std::string& pluginFolder, const std::string& value) {
    auto outcome = runProcess(LUMORA_MINIMAL_HOST, {pluginFolder, profile.root().string(), "Theme", value});
    // The example writes the platform's line ends.
    std::erase(outcome.out, '\r');
    return outcome;
}

} // namespace

TEST(MinimalHost, PumpsTheWriteOfAnotherThreadAndKeepsItOnTheDisk) {
    const Profile profile;
    const auto outcome = runHost(profile, LUMORA_PLUGINS, "dark");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "dark from LocalFileConfigStore\n");
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "dark\n");
}

TEST(MinimalHost, RefusesAProfileInUse) {
    const Profile profile;
    const RunningShell holder(profile);
    const auto outcome = runHost(profile, LUMORA_PLUGINS, "dark");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.error, HasSubstr("in use"));
}

TEST(MinimalHost, ExitsWith1WithoutThePlugIn) {
    const Profile profile;
    const auto outcome = runHost(profile, profile.root().string(), "dark");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.error, HasSubstr("cannot be loaded"));
}

} // namespace program_test
