#include <kyr/ProcessUtils.h>

#include <filesystem>

using KyrCoreUtils::ProcessUtils;

TEST(ProcessUtils, KnowsWhereTheProgramLies) {
    const std::filesystem::path folder = ProcessUtils::getProgramFolder();
    EXPECT_TRUE(std::filesystem::exists(folder / "host_kyr_test")) << folder;
}
