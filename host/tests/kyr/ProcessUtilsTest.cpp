#include <kyr/ProcessUtils.h>

#include <filesystem>
#include <fstream>
#include <string>

using KyrCoreUtils::ProcessUtils;

TEST(ProcessUtils, KnowsWhereTheProgramLies) {
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
