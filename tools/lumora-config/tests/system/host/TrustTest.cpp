#include "Program.h"

#include <gmock/gmock.h>
#include <unistd.h>

namespace program_test {

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

fs::path pluginFolder() {
    return fs::path(LUMORA_CONFIG_PROGRAM).parent_path().parent_path() / "lib";
}

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

void openToEverybody(const fs::path& folder) {
    fs::permissions(folder, fs::perms::others_write, fs::perm_options::add);
}

constexpr auto writableByAll = "can be written by everybody";

} // namespace

TEST(Trust, AProfileThatEverybodyMayWriteIsRefused) {
    const Profile profile;
    openToEverybody(profile.root());
    expectRefused(profile.run({"get", "Theme"}), profile.root(), writableByAll);
    EXPECT_FALSE(fs::exists(profile.root() / "config"));
    EXPECT_EQ(profile.run({"--trust", "get", "Theme"}).out, "system\n");
}

TEST(Trust, AFolderOfAProfileThatEverybodyMayWriteIsRefused) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    for (const auto* name : {"config", "data", "state", "resources"}) {
        const auto folder = profile.root() / name;
        openToEverybody(folder);
        expectRefused(profile.run({"get", "Theme"}), folder, writableByAll);
        fs::permissions(folder, fs::perms::others_write, fs::perm_options::remove);
    }
}

TEST(Trust, AFolderWithAnOptionOfItsOwnThatEverybodyMayWriteIsRefused) {
    const Profile profile;
    for (const auto* name : {"config", "data", "state", "resources"}) {
        const auto folder = profile.root() / name;
        fs::create_directory(folder);
        openToEverybody(folder);
        expectRefused(runWithFolders(profile, {"get", "Theme"}), folder, writableByAll);
        EXPECT_EQ(runWithFolders(profile, {"get", "Theme", "--trust"}).out, "system\n");
        fs::permissions(folder, fs::perms::others_write, fs::perm_options::remove);
    }
}

TEST(Trust, APluginFolderThatEverybodyMayWriteIsRefusedBeforeAnythingIsLoaded) {
    const Profile profile;
    const auto folder = profile.root() / "plugins";
    fs::create_directory(folder);
    for (const auto& entry : fs::directory_iterator(pluginFolder())) {
        if (entry.path().extension() == ".so") {
            fs::create_symlink(entry.path(), folder / entry.path().filename());
        }
    }
    openToEverybody(folder);
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
    EXPECT_THAT(outcome.error, HasSubstr("no plug-in libconfigservice.so: it is not in /usr/bin"));
}

} // namespace program_test
