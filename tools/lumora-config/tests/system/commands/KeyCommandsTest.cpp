#include "Program.h"

#include <Patterns.h>
#include <gmock/gmock.h>

namespace program_test {

using testing::AllOf;
using testing::Each;
using testing::HasSubstr;
using testing::Not;
using testing_host::ContainsRegex;

namespace {

std::vector<std::string> listNames(const Outcome& outcome) {
    std::vector<std::string> names;
    const auto answer = outcome.lines().at(0);
    for (const auto& key : answer.at("keys")) {
        names.push_back(key.at("key"));
    }
    return names;
}

} // namespace

TEST(Keys, ListsTheCatalogueWithoutAProfileOrAPlugIn) {
    const auto outcome = runProcess(LUMORA_CONFIG_PROGRAM, {"--plugin-dir", "/no/such/folder", "keys"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.error, "");
    EXPECT_THAT(outcome.out, ContainsRegex("AllowUrlProvisioning  -  boolean  -  Whether a provisioning URL"));
    EXPECT_THAT(outcome.out, ContainsRegex("TFTPPrimaryServer  TftpServer1  text  -  "));
    EXPECT_THAT(outcome.out, Not(HasSubstr("RegistryConfigStore")));
}

TEST(Keys, APatternSelectsByNewAndOldName) {
    EXPECT_THAT(listNames(runProcess(LUMORA_CONFIG_PROGRAM, {"--json", "keys", "TFTPSERVER?"})),
                testing::ElementsAre("TFTPPrimaryServer", "TFTPBackupServer1", "TFTPBackupServer2"));
    EXPECT_THAT(listNames(runProcess(LUMORA_CONFIG_PROGRAM, {"--json", "keys", "backup"})),
                Each(ContainsRegex("[Bb]ackup")));
    const auto miss = runProcess(LUMORA_CONFIG_PROGRAM, {"keys", "ServicesDomin"});
    EXPECT_EQ(miss.exitCode, 1);
    EXPECT_THAT(miss.error, HasSubstr("did you mean 'ServicesDomain'?"));
}

TEST(Keys, SensitiveAndRenamedKeysCanBeSelected) {
    const auto sensitive = runProcess(LUMORA_CONFIG_PROGRAM, {"--json", "keys", "--sensitive"}).lines().at(0);
    ASSERT_FALSE(sensitive.at("keys").empty());
    for (const auto& key : sensitive.at("keys")) {
        EXPECT_EQ(key.at("sensitive"), true) << key;
    }
    const auto renamed = runProcess(LUMORA_CONFIG_PROGRAM, {"--json", "keys", "--renamed"}).lines().at(0);
    ASSERT_GE(renamed.at("keys").size(), 18U);
    for (const auto& key : renamed.at("keys")) {
        EXPECT_TRUE(key.at("oldName").is_string()) << key;
    }
}

TEST(Keys, TheShellListsThem) {
    const Profile profile;
    EXPECT_THAT(profile.shell({"keys allowurl"}).out, HasSubstr("AllowUrlProvisioning"));
}

TEST(Describe, ShowsEverythingAboutAKeyByItsOldName) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "TFTPPrimaryServer", "tftp.example"}).exitCode, 0);
    const auto outcome = profile.run({"describe", "tftpserver1"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out, AllOf(ContainsRegex("^TFTPPrimaryServer\n"), ContainsRegex("meaning +The primary TFTP"),
                                   ContainsRegex("old name +TftpServer1"), ContainsRegex("sensitive +no"),
                                   ContainsRegex("kind +text"), ContainsRegex("value +\"tftp.example\""),
                                   ContainsRegex("source +LocalFileConfigStore")));
}

TEST(Describe, AnswersInJson) {
    const Profile profile;
    const auto answer = profile.run({"--json", "describe", "allowurlprovisioning"}).lines().at(0);
    EXPECT_EQ(answer.at("type"), "description");
    EXPECT_EQ(answer.at("key"), "AllowUrlProvisioning");
    EXPECT_EQ(answer.at("known"), true);
    EXPECT_EQ(answer.at("oldName"), nullptr);
    EXPECT_EQ(answer.at("kind"), "boolean");
    EXPECT_EQ(answer.at("values"), (nlohmann::json{"true", "false"}));
    EXPECT_EQ(answer.at("found"), true);
    EXPECT_EQ(answer.at("value"), "true");
    EXPECT_EQ(answer.at("store"), "lumora-config-defaults.xml");
}

TEST(Describe, HidesTheValueOfASensitiveKey) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "connectionpassword", "planted-secret"}).exitCode, 0);
    const auto outcome = profile.run({"describe", "ConnectionPassword"});
    EXPECT_THAT(outcome.out, AllOf(ContainsRegex("sensitive +yes"), HasSubstr("VALUE_HIDDEN")));
    EXPECT_THAT(outcome.out, Not(HasSubstr("planted-secret")));
    EXPECT_THAT(profile.run({"--show-secrets", "describe", "ConnectionPassword"}).out, HasSubstr("planted-secret"));
}

TEST(Describe, AKeyOutsideTheCatalogueHasAValueOnly) {
    const Profile profile;
    const auto outcome = profile.run({"describe", "Theme"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("not in the catalogue"), HasSubstr("\"system\"")));
    EXPECT_EQ(profile.run({"--json", "describe", "Theme"}).lines().at(0).at("known"), false);
    const auto unknown = profile.run({"describe", "ServicesDomin"});
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_EQ(unknown.out, "");
    EXPECT_THAT(unknown.error, HasSubstr("did you mean 'ServicesDomain'?"));
}

TEST(KeySuggestion, GetExplainAndSetNameTheClosestKeyAndContinue) {
    const Profile profile;
    const auto message = HasSubstr("the key 'TelemetryEnabeld' is unknown; did you mean 'TelemetryEnabled'?");
    const auto get = profile.run({"get", "TelemetryEnabeld"});
    EXPECT_EQ(get.exitCode, 1);
    EXPECT_THAT(get.error, message);
    const auto explain = profile.run({"explain", "TelemetryEnabeld"});
    EXPECT_EQ(explain.exitCode, 1);
    EXPECT_THAT(explain.error, message);
    EXPECT_THAT(explain.out, HasSubstr("TelemetryEnabeld"));
    const auto set = profile.run({"set", "TelemetryEnabeld", "x"});
    EXPECT_EQ(set.exitCode, 0);
    EXPECT_THAT(set.error, message);
    // The user has the key now, so it is a known one.
    EXPECT_EQ(profile.run({"get", "TelemetryEnabeld"}).error, "");
}

TEST(KeySuggestion, OldNamesAndKeysOfTheStoresAreKnown) {
    const Profile profile;
    EXPECT_THAT(profile.run({"get", "CtiServr1"}).error, HasSubstr("did you mean 'CtiServer1'?"));
    ASSERT_EQ(profile.run({"set", "colourofthelamp", "red"}).exitCode, 0);
    EXPECT_THAT(profile.run({"get", "colorofthelamp"}).error, HasSubstr("did you mean 'colourofthelamp'?"));
}

TEST(KeySuggestion, AKnownOrUnrelatedKeyGetsNone) {
    const Profile profile;
    EXPECT_THAT(profile.run({"get", "ctiserver1"}).error, Not(HasSubstr("did you mean")));
    EXPECT_THAT(profile.run({"get", "Unrelated"}).error, Not(HasSubstr("did you mean")));
    EXPECT_EQ(profile.run({"get", "Theme"}).error, "");
}

TEST(SetKind, AValueThatTheKindExcludesIsRefusedWithWhatIsPermitted) {
    const Profile profile;
    const std::vector<std::pair<Arguments, std::string>> cases{
        {{"set", "allowurlprovisioning", "0"},
         "the value of the key 'AllowUrlProvisioning' must be \"true\" or \"false\"; --force"},
        {{"set", "Lumora_SDK_Mode", "perhaps"}, "must be \"true\", \"false\", \"1\""},
        {{"set", "PrimaryConfigStores", "TftpStore"}, "must be entries NAME:PRIORITY;"}};
    for (const auto& [arguments, message] : cases) {
        const auto outcome = profile.run(arguments);
        EXPECT_EQ(outcome.exitCode, 1) << arguments.at(1);
        EXPECT_THAT(outcome.error, HasSubstr(message));
        EXPECT_EQ(profile.run({"get", arguments.at(1), "--store", "LocalFileConfigStore"}).exitCode, 1);
    }
}

TEST(SetKind, ForceSetsAnExcludedValue) {
    const Profile profile;
    EXPECT_EQ(profile.run({"set", "AllowUrlProvisioning", "0", "--force"}).exitCode, 0);
    EXPECT_EQ(profile.run({"get", "AllowUrlProvisioning"}).out, "0\n");
}

TEST(SetKind, PermittedValuesAreSetInAnyCase) {
    const Profile profile;
    EXPECT_EQ(profile.run({"set", "AllowUrlProvisioning", "FALSE"}).exitCode, 0);
    EXPECT_EQ(profile.run({"set", "Lumora_SDK_Mode", "off"}).exitCode, 0);
    EXPECT_EQ(profile.run({"set", "IP_MODE", "any text"}).exitCode, 0);
}

TEST(MemoryKind, AValueThatTheKindExcludesIsRefusedUnlessItIsForced) {
    const Profile profile;
    const auto refused = profile.shell({"memory AllowUrlProvisioning 0", "get AllowUrlProvisioning"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.error, HasSubstr("the value of the key 'AllowUrlProvisioning' must be \"true\" or \"false\""));
    EXPECT_EQ(refused.out, "true\n");
    EXPECT_THAT(profile.shell({"memory '1 key' x"}).error, HasSubstr("is not an XML name"));
    const auto forced = profile.shell(
        {"memory AllowUrlProvisioning 0 --force", "get AllowUrlProvisioning --store InMemoryConfigStore"});
    EXPECT_EQ(forced.exitCode, 0) << forced.error;
    EXPECT_EQ(forced.out, "0\n");
}

TEST(KeySpelling, ListAndMessagesUseTheCatalogues) {
    const Profile profile;
    EXPECT_THAT(profile.run({"set", "servicesdomain", "example.org"}).error, HasSubstr("ServicesDomain set;"));
    EXPECT_EQ(profile.run({"--json", "list", "servicesdomain"}).lines().at(0).at("values").at(0).at("key"),
              "ServicesDomain");
    EXPECT_THAT(profile.run({"explain", "servicesdomain"}).out, testing::StartsWith("ServicesDomain\n"));
    EXPECT_THAT(profile.run({"reset", "servicesdomain"}).error, HasSubstr("ServicesDomain reset;"));
    EXPECT_THAT(profile.run({"get", "mrx_meetinglist_onlinedata"}).error,
                HasSubstr("no store holds the key 'Mrx_MeetingList_OnlineData'"));
}

} // namespace program_test
