#include <kyr/FileUtils.h>

#include <TemporaryProfile.h>

#include <filesystem>

using KyrCoreUtils::FileUtils;
using testing_host::readFile;
using testing_host::TemporaryProfile;
using testing_host::writeFile;

TEST(TemporaryProfile, TheHostsDirectoriesAreInsideItUntilItIsDestroyed) {
    std::filesystem::path root;
    {
        const TemporaryProfile profile;
        root = profile.root();
        EXPECT_EQ(FileUtils::getConfigDirectory(), profile.config().string());
        EXPECT_EQ(FileUtils::getUserLocalAppDir(), profile.data().string());
        EXPECT_EQ(FileUtils::getStateDirectory(), profile.state().string());
        EXPECT_EQ(FileUtils::getResourcesDirectory(), profile.resources().string());
        for (const auto& folder : {profile.config(), profile.data(), profile.state(), profile.resources()}) {
            EXPECT_TRUE(std::filesystem::is_directory(folder));
        }
        writeFile(profile.config() / "sub" / "file", "content");
    }
    EXPECT_FALSE(std::filesystem::exists(root));
    EXPECT_EQ(FileUtils::getConfigDirectory().find(root.string()), std::string::npos);
}

TEST(TemporaryProfile, TwoProfilesHaveDifferentDirectories) {
    const TemporaryProfile first;
    const TemporaryProfile second;
    EXPECT_NE(first.root(), second.root());
}

TEST(TemporaryProfile, FilesAreReadAndWrittenUnchanged) {
    const TemporaryProfile profile;
    const auto path = profile.root() / "a" / "b";
    const std::string content("line\r\n\0end", 10);
    writeFile(path, content);
    EXPECT_EQ(readFile(path), content);
    EXPECT_EQ(readFile(profile.root() / "missing"), "");
}
