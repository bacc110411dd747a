#include <kyr/FileAccess.h>
#include <kyr/ProcessUtils.h>

#include <TemporaryProfile.h>

#include <filesystem>
#include <fstream>
#include <string>

using KyrCoreUtils::ProcessUtils;

TEST(ProcessUtils, ReturnsTheDirectoryOfTheProgram) {
    const std::filesystem::path folder = ProcessUtils::getProgramFolder();
    EXPECT_TRUE(std::filesystem::exists(folder / HOST_TEST_PROGRAM)) << folder;
}

TEST(ProcessUtils, ReturnsTheNameOfTheMachine) {
    const auto name = ProcessUtils::getHostName();
    EXPECT_FALSE(name.empty());
    std::ifstream file("/proc/sys/kernel/hostname");
    if (std::string expected; std::getline(file, expected)) {
        EXPECT_EQ(name, expected);
    }
}

TEST(ProcessUtils, ReturnsTheNameOfTheUserThatOwnsNewFiles) {
    const testing_host::TemporaryProfile profile;
    testing_host::writeFile(profile.root() / "file", "");
    const auto access = KyrCoreUtils::FileAccess::read((profile.root() / "file").string());
    ASSERT_TRUE(access);
    EXPECT_EQ(ProcessUtils::getUserName(), access->ownerName);
}

TEST(ProcessUtils, ReturnsTheNameOfTheSystem) {
    EXPECT_TRUE(ProcessUtils::getSystemName().starts_with(HOST_TEST_SYSTEM " ")) << ProcessUtils::getSystemName();
}
