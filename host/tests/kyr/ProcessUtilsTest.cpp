#include <kyr/FileAccess.h>
#include <kyr/ProcessUtils.h>

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
    const auto access = KyrCoreUtils::FileAccess::read("/proc/self/stat");
    ASSERT_TRUE(access);
    EXPECT_EQ(ProcessUtils::getUserName(), access->ownerName);
}

TEST(ProcessUtils, ReturnsTheNameOfTheSystem) {
    EXPECT_TRUE(ProcessUtils::getSystemName().starts_with("Linux ")) << ProcessUtils::getSystemName();
}
