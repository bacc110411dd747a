#include "Program.h"

#include <gmock/gmock.h>

namespace program_test {

using testing::HasSubstr;
using testing::StartsWith;

TEST(CommandLine, HelpNamesEveryCommandAndGoesToStandardOutput) {
    const auto outcome = runProcess(LUMORA_CONFIG_PROGRAM, {"--help"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.error, "");
    for (const auto* word :
         {"get", "explain", "list", "stores", "set", "reset", "provision", "reset-provisioning", "mdm", "report", "log",
          "reset-data", "remove-store", "shell", "--profile", "--bootstrap", "--json", "--show-secrets"}) {
        EXPECT_THAT(outcome.out, HasSubstr(word));
    }
}

TEST(CommandLine, HelpOfACommandNamesItsOptions) {
    const auto outcome = runProcess(LUMORA_CONFIG_PROGRAM, {"get", "--help"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out, HasSubstr("--origin"));
}

TEST(CommandLine, VersionIsShown) {
    const auto outcome = runProcess(LUMORA_CONFIG_PROGRAM, {"--version"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out, StartsWith("lumora-config "));
}

TEST(CommandLine, AnInvalidCommandLineExitsWith2AndAMessage) {
    const std::vector<Arguments> senseless{{},
                                           {"--no-such-option", "stores"},
                                           {"no-such-command"},
                                           {"get"},
                                           {"set", "Key"},
                                           {"get", "Key", "extra"},
                                           {"get", "Key", "--admin", "--store", "A"},
                                           {"--store", "file-only.xml", "stores"},
                                           {"--bootstrap", "file-only", "stores"},
                                           {"--profile", "a", "--config-dir", "b", "stores"},
                                           {"observe", "Key"},
                                           {"--profile"}};
    for (const auto& arguments : senseless) {
        const auto outcome = runProcess(LUMORA_CONFIG_PROGRAM, arguments);
        EXPECT_EQ(outcome.exitCode, 2) << testing::PrintToString(arguments);
        EXPECT_EQ(outcome.out, "") << testing::PrintToString(arguments);
        EXPECT_THAT(outcome.error, StartsWith("lumora-config: ")) << testing::PrintToString(arguments);
    }
}

TEST(CommandLine, AnUnknownOptionIsNamed) {
    EXPECT_THAT(runProcess(LUMORA_CONFIG_PROGRAM, {"--no-such-option", "stores"}).error, HasSubstr("--no-such-option"));
}

TEST(CommandLine, AMistypedCommandNamesTheClosest) {
    const std::vector<std::pair<Arguments, std::string>> cases{
        {{"gte", "Theme"}, "there is no command 'gte'; did you mean 'get'?"},
        {{"STORES"}, "there is no command 'STORES'; did you mean 'stores'?"},
        {{"--json", "remove-stroe", "A"}, "there is no command 'remove-stroe'; did you mean 'remove-store'?"},
        {{"help", "docter"}, "there is no command 'docter'; did you mean 'doctor'?"},
        {{"unrelated"}, "there is no command 'unrelated' (lumora-config help"},
        {{}, "no command is given"}};
    for (const auto& [arguments, message] : cases) {
        const auto outcome = runProcess(LUMORA_CONFIG_PROGRAM, arguments);
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.error, HasSubstr(message));
    }
}

TEST(CommandLine, AMistypedOptionNamesTheClosest) {
    const std::vector<std::pair<Arguments, std::string>> cases{
        {{"--profil", "a", "get", "Theme"}, "there is no option '--profil'; did you mean '--profile'?"},
        {{"--profil=a", "get", "Theme"}, "there is no option '--profil'; did you mean '--profile'?"},
        {{"get", "Theme", "--orign"}, "there is no option '--orign'; did you mean '--origin'?"},
        {{"get", "Theme", "--jsno"}, "there is no option '--jsno'; did you mean '--json'?"},
        {{"stores", "--origin"}, "there is no option '--origin' (lumora-config help"}};
    for (const auto& [arguments, message] : cases) {
        const auto outcome = runProcess(LUMORA_CONFIG_PROGRAM, arguments);
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_THAT(outcome.error, HasSubstr(message));
    }
}

TEST(CommandLine, HelpOfACommandIsThatOfItsOption) {
    const auto help = runProcess(LUMORA_CONFIG_PROGRAM, {"help", "report"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_EQ(help.error, "");
    EXPECT_EQ(help.out, runProcess(LUMORA_CONFIG_PROGRAM, {"report", "--help"}).out);
    EXPECT_EQ(runProcess(LUMORA_CONFIG_PROGRAM, {"help"}).out, runProcess(LUMORA_CONFIG_PROGRAM, {"--help"}).out);
}

TEST(CommandLine, OptionsMayFollowTheCommand) {
    const Profile profile;
    EXPECT_EQ(profile.run({"get", "Theme", "--json"}).lines().at(0).at("value"), "system");
}

TEST(CommandLine, AValueMayLookLikeAnOption) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "--", "--dark"}).exitCode, 0);
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "--dark\n");
}

TEST(CommandLine, EachFolderHasItsOwnOption) {
    const Profile profile;
    const auto folder = [&](const char* name) { return (profile.root() / name).string(); };
    const auto outcome = runProcess(LUMORA_CONFIG_PROGRAM,
                                    {"--config-dir", folder("c"), "--data-dir", folder("d"), "--state-dir", folder("s"),
                                     "--resources-dir", folder("resources"), "set", "Theme", "dark"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_TRUE(std::filesystem::exists(profile.root() / "c" / "lumoraLocalConfig.dat"));
    EXPECT_TRUE(std::filesystem::exists(profile.root() / "d" / "keys"));
    EXPECT_TRUE(std::filesystem::exists(profile.root() / "s" / "lumora-config.log"));
}

} // namespace program_test
