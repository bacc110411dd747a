#include <kyr/FileUtils.h>

#include <TemporaryProfile.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <optional>

namespace {

namespace fs = std::filesystem;
using KyrCoreUtils::FileUtils;
using testing_host::TemporaryProfile;

/// Sets environment variables for one test and restores them.
class Environment {
public:
    ~Environment() {
        for (const auto& [name, value] : former) {
            apply(name, value);
        }
    }

    void set(const std::string& name, const std::optional<std::string>& value) {
        const char* current = std::getenv(name.c_str());
        former.emplace(name, current != nullptr ? std::optional<std::string>(current) : std::nullopt);
        apply(name, value);
    }

private:
    static void apply(const std::string& name, const std::optional<std::string>& value) {
        if (value) {
            ::setenv(name.c_str(), value->c_str(), 1);
        } else {
            ::unsetenv(name.c_str());
        }
    }

    std::map<std::string, std::optional<std::string>> former;
};

/// The platform's own directories, with a temporary home folder.
class PlatformDirectoriesTest : public testing::Test {
protected:
    PlatformDirectoriesTest() {
        FileUtils::overrideDirectories({});
        environment.set("HOME", home);
        for (const auto* name : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"}) {
            environment.set(name, std::nullopt);
        }
    }

    const TemporaryProfile profile;
    const std::string home = profile.root().string();
    Environment environment;
};

TEST_F(PlatformDirectoriesTest, AreBelowTheHomeDirectoryByDefault) {
    EXPECT_EQ(FileUtils::getConfigDirectory(), home + "/.config/Lumora/Config");
    EXPECT_EQ(FileUtils::getUserLocalAppDir(), home + "/.local/share/Lumora");
    EXPECT_EQ(FileUtils::getStateDirectory(), home + "/.local/state/Lumora");
}

TEST_F(PlatformDirectoriesTest, FollowTheDesktopsVariables) {
    environment.set("XDG_CONFIG_HOME", "/x/config/");
    environment.set("XDG_DATA_HOME", "/x/data");
    environment.set("XDG_STATE_HOME", "/x/state");
    EXPECT_EQ(FileUtils::getConfigDirectory(), "/x/config/Lumora/Config");
    EXPECT_EQ(FileUtils::getUserLocalAppDir(), "/x/data/Lumora");
    EXPECT_EQ(FileUtils::getStateDirectory(), "/x/state/Lumora");
}

TEST_F(PlatformDirectoriesTest, IgnoreEmptyAndRelativeVariables) {
    environment.set("XDG_CONFIG_HOME", "");
    environment.set("XDG_DATA_HOME", "relative/data");
    EXPECT_EQ(FileUtils::getConfigDirectory(), home + "/.config/Lumora/Config");
    EXPECT_EQ(FileUtils::getUserLocalAppDir(), home + "/.local/share/Lumora");
}

TEST_F(PlatformDirectoriesTest, UseTheUserDatabaseIfHomeIsUnsetOrRelative) {
    environment.set("HOME", std::nullopt);
    const std::string directory = FileUtils::getUserLocalAppDir();
    EXPECT_TRUE(directory.ends_with("/.local/share/Lumora")) << directory;
    EXPECT_FALSE(directory.starts_with(home));
    environment.set("HOME", "relative");
    EXPECT_EQ(FileUtils::getUserLocalAppDir(), directory);
}

TEST_F(PlatformDirectoriesTest, ConfigurationDirectoryIsEmptyIfItWouldContainTheKeys) {
    environment.set("XDG_CONFIG_HOME", "/x");
    environment.set("XDG_DATA_HOME", "/x/Lumora/Config/data");
    EXPECT_EQ(FileUtils::getConfigDirectory(), "");
}

TEST_F(PlatformDirectoriesTest, ResourcesDirectoryIsAbsolute) {
    const std::string directory = FileUtils::getResourcesDirectory();
    EXPECT_TRUE(fs::path(directory).is_absolute()) << directory;
    EXPECT_TRUE(directory.ends_with("/lumora")) << directory;
}

TEST_F(PlatformDirectoriesTest, OverridingOneDirectoryLeavesTheOthersUnchanged) {
    FileUtils::overrideDirectories({"", "", "", "/opt/resources"});
    EXPECT_EQ(FileUtils::getResourcesDirectory(), "/opt/resources");
    EXPECT_EQ(FileUtils::getUserLocalAppDir(), home + "/.local/share/Lumora");
}

class OverriddenDirectoriesTest : public testing::Test {
protected:
    std::string configOf(const std::string& config) const {
        FileUtils::overrideDirectories({config, profile.data().string(), profile.state().string(), ""});
        return FileUtils::getConfigDirectory();
    }

    const TemporaryProfile profile;
};

TEST_F(OverriddenDirectoriesTest, ReplaceThePlatformsDirectories) {
    EXPECT_EQ(FileUtils::getConfigDirectory(), profile.config().string());
    EXPECT_EQ(FileUtils::getUserLocalAppDir(), profile.data().string());
    EXPECT_EQ(FileUtils::getStateDirectory(), profile.state().string());
    EXPECT_EQ(FileUtils::getResourcesDirectory(), profile.resources().string());
}

TEST_F(OverriddenDirectoriesTest, LoseTheirTrailingSeparators) {
    EXPECT_EQ(configOf(profile.config().string() + "//"), profile.config().string());
}

TEST_F(OverriddenDirectoriesTest, AreMadeAbsolute) {
    EXPECT_EQ(configOf("some/config"), (fs::current_path() / "some" / "config").string());
}

TEST_F(OverriddenDirectoriesTest, RefuseAConfigurationDirectoryThatMustNotBeEmptied) {
    Environment environment;
    environment.set("HOME", (profile.root() / "home").string());
    const std::string root = profile.root().string();
    EXPECT_EQ(configOf("/"), "");
    EXPECT_EQ(configOf("//"), "");
    EXPECT_EQ(configOf("/.."), "");
    EXPECT_EQ(configOf(root + "/home"), "");
    EXPECT_EQ(configOf(root + "/home/"), "");
    EXPECT_EQ(configOf(root + "/home/x/.."), "");
    EXPECT_EQ(configOf(root), "");
    EXPECT_EQ(configOf(profile.data().string()), "");
    EXPECT_EQ(configOf(profile.state().string()), "");
    EXPECT_EQ(configOf(root + "/home/config"), root + "/home/config");
    EXPECT_EQ(configOf(root + "/dat"), root + "/dat");
}

TEST_F(OverriddenDirectoriesTest, RefuseALinkToADirectoryThatMustNotBeEmptied) {
    const fs::path link = profile.root() / "link";
    fs::create_directory_symlink(profile.data(), link);
    EXPECT_EQ(configOf(link.string()), "");
    EXPECT_EQ(configOf((link / "below").string()), (link / "below").string());
}

} // namespace
