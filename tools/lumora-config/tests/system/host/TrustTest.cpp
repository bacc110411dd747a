#include "Program.h"

#include <PrivateFiles.h>
#include <gmock/gmock.h>
#include <unistd.h>

namespace program_test {

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

/// Runs the program with each folder of the profile named by its own option.
Outcome runWithFolders(const Profile& profile, Arguments arguments) {
    const auto folder = [&](const char* name) { return (profile.root() / name).string(); };
    Arguments all{"--config-dir", folder("config"), "--data-dir",      folder("data"),
                  "--state-dir",  folder("state"),  "--resources-dir", folder("resources")};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runProcess(LUMORA_CONFIG_PROGRAM, all);
}

void expectRefused(const Outcome& outcome, const fs::path& folder, const std::string& reason) {
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.error, "lumora-config: " + folder.string() + ": " + reason + "; --trust accepts it\n");
}

constexpr auto writableByAll = "can be written by everybody";

} // namespace

TEST(Trust, AProfileThatEverybodyMayWriteIsRefused) {
    const Profile profile;
    testing_host::letEverybodyWrite(profile.root());
    expectRefused(profile.run({"get", "Theme"}), profile.root(), writableByAll);
    EXPECT_FALSE(fs::exists(profile.root() / "config"));
    EXPECT_EQ(profile.run({"--trust", "get", "Theme"}).out, "system\n");
}

TEST(Trust, AFolderOfAProfileThatEverybodyMayWriteIsRefused) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    for (const auto* name : {"config", "data", "state", "resources"}) {
        const auto folder = profile.root() / name;
        testing_host::letEverybodyWrite(folder);
        expectRefused(profile.run({"get", "Theme"}), folder, writableByAll);
        testing_host::makePrivate(folder);
    }
}

TEST(Trust, AFolderWithAnOptionOfItsOwnThatEverybodyMayWriteIsRefused) {
    const Profile profile;
    for (const auto* name : {"config", "data", "state", "resources"}) {
        const auto folder = profile.root() / name;
        fs::create_directory(folder);
        testing_host::letEverybodyWrite(folder);
        expectRefused(runWithFolders(profile, {"get", "Theme"}), folder, writableByAll);
        EXPECT_EQ(runWithFolders(profile, {"get", "Theme", "--trust"}).out, "system\n");
        testing_host::makePrivate(folder);
    }
}

TEST(Trust, AProfileToCompareThatEverybodyMayWriteIsRefused) {
    const Profile profile;
    const Profile other;
    testing_host::letEverybodyWrite(other.root());
    expectRefused(profile.run({"diff", other.root().string()}), other.root(), writableByAll);
    EXPECT_EQ(profile.run({"--trust", "diff", other.root().string()}).exitCode, 0);
}

TEST(Trust, APluginFolderThatEverybodyMayWriteIsRefusedBeforeAnythingIsLoaded) {
    const Profile profile;
    const auto folder = profile.root() / "plugins";
    fs::create_directory(folder);
    fs::copy_file(fs::path(LUMORA_PLUGINS) / LUMORA_PLUGIN_FILE, folder / LUMORA_PLUGIN_FILE);
    testing_host::letEverybodyWrite(folder);
    expectRefused(profile.run({"--plugin-dir", folder.string(), "get", "Theme"}), folder, writableByAll);
    EXPECT_EQ(profile.run({"--plugin-dir", folder.string(), "--trust", "get", "Theme"}).out, "system\n");
}

TEST(Trust, ADirectoryOfAnotherUserIsRefused) {
    const Profile profile;
    const auto folder = profile.root() / "config";
    fs::create_directory(folder);
    constexpr uid_t namelessUser = 1234567;
    if (chown(folder.c_str(), namelessUser, static_cast<gid_t>(-1)) != 0) {
        GTEST_SKIP() << "only root can change the owner of a directory";
    }
    const auto reason = "belongs to another user, " + std::to_string(namelessUser);
    expectRefused(profile.run({"get", "Theme"}), folder, reason);
    expectRefused(runWithFolders(profile, {"get", "Theme"}), folder, reason);
    EXPECT_EQ(profile.run({"--trust", "get", "Theme"}).out, "system\n");
}

TEST(Trust, FoldersOfRootAreAccepted) {
    const Profile profile;
    const auto outcome = profile.run({"--plugin-dir", "/usr/bin", "get", "Theme"});
    EXPECT_THAT(outcome.error, HasSubstr("no plug-in " LUMORA_PLUGIN_FILE ": it is not in /usr/bin"));
}

} // namespace program_test
