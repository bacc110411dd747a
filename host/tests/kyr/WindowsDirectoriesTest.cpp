#include <kyr/FileUtils.h>
#include <kyr/ProcessUtils.h>

#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

namespace fs = std::filesystem;
using KyrCoreUtils::FileUtils;

} // namespace

TEST(WindowsDirectories, AreInTheKnownFoldersOfTheUser) {
    FileUtils::overrideDirectories({});
    const std::string config = FileUtils::getConfigDirectory();
    const std::string data = FileUtils::getUserLocalAppDir();
    EXPECT_TRUE(config.ends_with("\\Lumora\\Config")) << config;
    EXPECT_TRUE(data.ends_with("\\Lumora")) << data;
    EXPECT_EQ(FileUtils::getStateDirectory(), data + "\\State");
    EXPECT_NE(fs::path(config).parent_path().parent_path(), fs::path(data).parent_path()) << "one of them roams";
    for (const auto& directory : {config, data}) {
        EXPECT_TRUE(fs::path(directory).is_absolute()) << directory;
    }
}

TEST(WindowsDirectories, TheInstalledDataIsInTheDirectoryOfTheLibrary) {
    FileUtils::overrideDirectories({});
    EXPECT_EQ(fs::path(FileUtils::getResourcesDirectory()), fs::path(KyrCoreUtils::ProcessUtils::getProgramFolder()));
}

TEST(WindowsDirectories, TheSeparatorIsABackslash) {
    EXPECT_EQ(FileUtils::FileSeparator(), "\\");
}

TEST(WindowsDirectories, RefuseAConfigurationDirectoryThatMustNotBeEmptied) {
    const testing_host::TemporaryProfile profile;
    const auto configOf = [&](const fs::path& config) {
        FileUtils::overrideDirectories({config.string(), profile.data().string(), profile.state().string(), ""});
        return FileUtils::getConfigDirectory();
    };
    const fs::path home = std::getenv("USERPROFILE");
    const auto drive = profile.root().root_path();
    for (const auto& forbidden : {drive, drive / "x" / "..", home, home / "", home / "x" / "..", home.parent_path(),
                                  profile.root(), profile.data(), profile.state()}) {
        EXPECT_EQ(configOf(forbidden), "") << forbidden;
    }
    for (const auto& allowed : {home / "config", profile.root() / "dat"}) {
        EXPECT_EQ(configOf(allowed), allowed.string());
    }
}
