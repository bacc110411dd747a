#include "Program.h"

#include <Patterns.h>
#include <gmock/gmock.h>

namespace program_test {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing_host::ContainsRegex;

TEST(Get, PrintsOnlyTheValue) {
    const Profile profile;
    const auto outcome = profile.run({"get", "theme"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "system\n");
    EXPECT_EQ(outcome.error, "");
}

TEST(Get, PrintsTheOriginOnRequest) {
    const Profile profile;
    EXPECT_THAT(profile.run({"get", "Theme", "--origin"}).out,
                testing::StartsWith("system  (lumora-config-defaults.xml, "));
}

TEST(Get, AnUnknownKeyIsNotFound) {
    const Profile profile;
    const auto outcome = profile.run({"get", "NoSuchKey"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.error, HasSubstr("no store holds the key 'NoSuchKey'"));
}

TEST(Get, AnEmptyValueIsFound) {
    const Profile profile;
    const auto outcome = profile.run({"get", "PRTCertificateName"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "\n");
}

TEST(Get, TheAdministratorsValueIgnoresTheUsers) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    EXPECT_THAT(profile.run({"get", "Theme", "--origin"}).out, testing::StartsWith("dark  (LocalFileConfigStore, "));
    EXPECT_EQ(profile.run({"get", "Theme", "--admin"}).out, "system\n");
    ASSERT_EQ(profile.run({"set", "OnlyMine", "x"}).exitCode, 0);
    EXPECT_EQ(profile.run({"get", "OnlyMine", "--admin"}).exitCode, 1);
}

TEST(Get, ReadsOneStoreOnRequest) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    EXPECT_EQ(profile.run({"get", "Theme", "--store", "LUMORA-config-defaults.xml"}).out, "system\n");
    EXPECT_EQ(profile.run({"get", "Theme", "--store", "localfileconfigstore"}).out, "dark\n");
    const auto miss = profile.run({"get", "IP_MODE", "--store", "LocalFileConfigStore"});
    EXPECT_EQ(miss.exitCode, 1);
    EXPECT_THAT(miss.error, HasSubstr("does not hold the key 'IP_MODE'"));
    const auto noStore = profile.run({"get", "Theme", "--store", "NoSuchStore"});
    EXPECT_EQ(noStore.exitCode, 1);
    EXPECT_THAT(noStore.error, HasSubstr("no store 'NoSuchStore'"));
}

TEST(Get, FindsARenamedKeyByEitherName) {
    const Profile profile;
    const auto file = profile.writeDocument("old.xml", "<TftpServer1>old.example</TftpServer1>");
    const Arguments store{"--store", file + ":A:40", "get"};
    auto byOld = store;
    byOld.insert(byOld.end(), {"TftpServer1", "--origin"});
    auto byNew = store;
    byNew.insert(byNew.end(), {"TFTPPrimaryServer", "--origin"});
    EXPECT_THAT(profile.run(byOld).out, testing::StartsWith("old.example  (A, under its old name, "));
    EXPECT_THAT(profile.run(byNew).out, testing::StartsWith("old.example  (A, under its old name, "));
}

TEST(Get, HidesSensitiveValues) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "connectionpassword", "planted-secret"}).exitCode, 0);
    EXPECT_EQ(profile.run({"get", "ConnectionPassword"}).out, "VALUE_HIDDEN\n");
    EXPECT_EQ(profile.run({"--show-secrets", "get", "ConnectionPassword"}).out, "planted-secret\n");
}

TEST(Get, HidesWhatAForeignDocumentMarksAsSensitive) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<Pin sensitive=\"true\">planted-secret</Pin>");
    EXPECT_EQ(profile.run({"--store", file + ":A:40", "get", "Pin"}).out, "VALUE_HIDDEN\n");
}

TEST(Get, ShowsTheCopyOfAMarkedValueInTheNextRun) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<Pin sensitive=\"true\">planted-value</Pin>");
    ASSERT_EQ(profile.run({"--store", file + ":A:40:cache", "get", "Pin"}).out, "VALUE_HIDDEN\n");
    EXPECT_EQ(profile.run({"get", "Pin"}).out, "planted-value\n");
}

TEST(Explain, ShowsTheValueOfEveryStoreInChainOrderAndWhichOneWinsByWhichName) {
    const Profile profile;
    const auto oldNames = profile.writeDocument("old.xml", "<TftpServer1>old.example</TftpServer1>");
    const auto newNames = profile.writeDocument("new.xml", "<TFTPPrimaryServer>new.example</TFTPPrimaryServer>");
    const auto outcome =
        profile.run({"--store", newNames + ":New:60", "--store", oldNames + ":Old:50", "explain", "TftpServer1"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_THAT(outcome.out, HasSubstr("TftpServer1, the old name of TFTPPrimaryServer"));
    // The new name wins, although the store with the old name comes first.
    EXPECT_THAT(outcome.out, ContainsRegex("20  LocalFileConfigStore +-\n"));
    EXPECT_THAT(outcome.out, ContainsRegex("\n +50  Old +TftpServer1 +\"old.example\" .*old.xml:1\n"
                                           "> +60  New +TFTPPrimaryServer +\"new.example\" .*new.xml:1\n"));
    EXPECT_THAT(outcome.out,
                ContainsRegex("in force +\"new.example\" from New, under the new name TFTPPrimaryServer\n"));
    EXPECT_THAT(outcome.out, ContainsRegex("\n2147483647  lumora-config-defaults.xml|2147483647  lumora-config"));
}

TEST(Explain, ShowsThatTheUserOverridesTheAdministrator) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    const auto outcome = profile.run({"explain", "Theme"});
    EXPECT_THAT(outcome.out,
                ContainsRegex("> +20  LocalFileConfigStore +Theme +\"dark\" .*[/\\]lumoraLocalConfig.dat:[0-9]+\n"));
    EXPECT_THAT(outcome.out, ContainsRegex("administrator's +\"system\" from lumora-config-defaults.xml\n"));
    EXPECT_THAT(outcome.out, ContainsRegex("overridden +yes\n"));
}

TEST(Explain, ShowsTheChainAndExitsWith1ForAnUnknownKey) {
    const Profile profile;
    const auto outcome = profile.run({"explain", "NoSuchKey"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("LocalFileConfigStore"), ContainsRegex("in force +none")));
}

TEST(Explain, ShowsNoSecretAnywhere) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Initial_Info", "planted-secret"}).exitCode, 0);
    for (const auto& options : {Arguments{"explain"}, Arguments{"--json", "explain"}}) {
        auto arguments = options;
        arguments.emplace_back("initial_info");
        const auto outcome = profile.run(arguments);
        EXPECT_THAT(outcome.out + outcome.error, AllOf(HasSubstr("VALUE_HIDDEN"), Not(HasSubstr("planted-secret"))));
    }
}

TEST(List, ShowsKeysByPrefixAndMarksWhatIsOverridden) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "EnableHuntGroup", "true"}).exitCode, 0);
    const auto outcome = profile.run({"list", "enable"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out, ContainsRegex("\\* +[Ee]nable[Hh]unt[Gg]roup +\"true\" +LocalFileConfigStore\n"));
    EXPECT_THAT(outcome.out, ContainsRegex("\n +[Ee]nable[Cc]all[Pp]ickup +\"false\" +lumora-config-defaults.xml\n"));
    EXPECT_THAT(outcome.out, Not(ContainsRegex("[Tt]heme")));
}

TEST(List, ExitsWith1WithoutAMatch) {
    const Profile profile;
    EXPECT_EQ(profile.run({"list", "NoSuchPrefix"}).exitCode, 1);
}

TEST(Stores, AreListedInChainOrder) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<A>1</A><B>2</B>");
    const auto outcome = profile.run({"--json", "--store", file + ":First:40", "--store", file + ":Second:40",
                                      "--store", file + ":Zeroth:7", "stores"});
    EXPECT_THAT(storeNames(outcome.lines().back()),
                testing::ElementsAre("Zeroth", "LocalFileConfigStore", "RegistryConfigStore", "First", "Second",
                                     "UrlProvisioningConfigStore", "InMemoryConfigStore",
                                     "lumora-config-defaults.xml"));
}

TEST(Stores, ShowWhichStoresAreWritableAndTheirNumberOfKeys) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<A>1</A><B>2</B>");
    const auto outcome = profile.run({"--store", file + ":Foreign:40", "stores"});
    EXPECT_THAT(outcome.out, ContainsRegex("40  Foreign +read-only +not local +2\n"));
    EXPECT_THAT(outcome.out, ContainsRegex("20  LocalFileConfigStore +writable +not local +"));
}

TEST(Stores, ABootstrapFileIsInTheChain) {
    const Profile profile;
    const auto file = profile.write("boot", "# installer\nSelfCareURL: https://selfcare.example:8443/home\n");
    const Arguments bootstrap{"--bootstrap", file + ":700"};
    auto get = bootstrap;
    get.insert(get.end(), {"get", "SelfCareURL", "--origin"});
    EXPECT_THAT(profile.run(get).out,
                testing::StartsWith("https://selfcare.example:8443/home  (BootstrapConfigStore, "));
    auto stores = bootstrap;
    stores.emplace_back("stores");
    EXPECT_THAT(profile.run(stores).out, ContainsRegex("700  BootstrapConfigStore +read-only +local +1\n"));
}

TEST(Stores, ACachedCopyIsReadInTheNextRun) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<FromServer>x</FromServer>");
    ASSERT_EQ(profile.run({"--store", file + ":Foreign:40:cache", "get", "FromServer"}).exitCode, 0);
    EXPECT_TRUE(std::filesystem::exists(profile.root() / "config" / "Cache" / "cachedForeign.dat"));
    EXPECT_THAT(profile.run({"get", "FromServer", "--origin"}).out, testing::StartsWith("x  (Foreign, "));
    EXPECT_THAT(profile.run({"stores"}).out, ContainsRegex("41  Foreign +read-only +local +1\n"));
}

TEST(Stores, AStoreWithoutACopyIsNotInTheNextRun) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<FromServer>x</FromServer>");
    ASSERT_EQ(profile.run({"--store", file + ":Foreign:40", "get", "FromServer"}).exitCode, 0);
    EXPECT_EQ(profile.run({"get", "FromServer"}).exitCode, 1);
}

TEST(Policy, IsBetweenTheUsersStoreAndTheDefaults) {
    const Profile profile;
    profile.writePolicy("Theme", "corporate");
    EXPECT_THAT(profile.run({"get", "Theme", "--origin"}).out, testing::StartsWith("corporate  " + originOfPolicy()));
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    EXPECT_THAT(profile.run({"get", "Theme", "--origin"}).out, testing::StartsWith("dark  (LocalFileConfigStore, "));
    EXPECT_THAT(profile.run({"get", "Theme", "--admin", "--origin"}).out,
                testing::StartsWith("corporate  " + originOfPolicy()));
}

} // namespace program_test
