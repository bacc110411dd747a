#include "Program.h"

#include <gtest/gtest.h>

namespace program_test {

TEST(ImportPolicyPlatform, IsRefusedBecauseTheSystemHasARegistry) {
    const Profile profile;
    const auto file =
        profile.write("p.reg", "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\Policies\\"
                               "Ventrix Systems, Inc.\\Unified Communications\\VentrixUC]\r\n"
                               "\"Theme\"=\"corporate\"\r\n");
    const auto outcome = profile.run({"import-policy", file});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.error, "lumora-config: " + file + ": this system has a registry; import the file there\n");
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "system\n");
    EXPECT_FALSE(std::filesystem::exists(profile.root() / "data" / "registry"));
}

} // namespace program_test
