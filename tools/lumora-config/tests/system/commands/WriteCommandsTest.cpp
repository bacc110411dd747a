#include "Program.h"

#include <gmock/gmock.h>

#include <utility>

namespace program_test {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

TEST(Set, IsPersistentAndReportsTheEffectiveValue) {
    const Profile profile;
    const auto outcome = profile.run({"set", "Theme", "dark"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.error, "Theme set; in force: \"dark\" from LocalFileConfigStore\n");
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "dark\n");
}

TEST(Set, WritesTheFileAndItsBackupBeforeItExits) {
    const Profile profile;
    const auto damage = [&](const std::string& name) {
        EXPECT_TRUE(std::filesystem::exists(profile.root() / "config" / name));
        profile.write("config/" + name, "damaged");
    };
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    damage("lumoraLocalConfig.dat");
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "dark\n");
    ASSERT_EQ(profile.run({"set", "Theme", "light"}).exitCode, 0);
    damage("lumoraLocalConfig_backup.dat");
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "light\n");
}

TEST(Set, KeepsUmlautsSpacesAndMarkup) {
    const Profile profile;
    const std::string value = "  Grüße <&> \"quoted\" 漢字 ";
    ASSERT_EQ(profile.run({"set", "Greeting", value}).exitCode, 0);
    EXPECT_EQ(profile.run({"get", "Greeting"}).out, value + "\n");
}

TEST(Set, ReportsThatAStoreOfHigherPriorityStillWins) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<Theme>corporate</Theme>");
    const auto outcome = profile.run({"--store", file + ":Front:10", "set", "Theme", "dark"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.error, HasSubstr("in force: \"corporate\" from Front"));
}

TEST(Set, DoesNotPrintASecret) {
    const Profile profile;
    const auto outcome = profile.run({"set", "connectionpassword", "planted-secret"});
    EXPECT_THAT(outcome.out + outcome.error, AllOf(HasSubstr("VALUE_HIDDEN"), Not(HasSubstr("planted-secret"))));
}

TEST(Set, AnEmptyKeyIsRefused) {
    const Profile profile;
    for (const auto& arguments : {Arguments{"set", "", "x"}, Arguments{"set", "", "x", "--force"}}) {
        const auto outcome = profile.run(arguments);
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(outcome.error, "lumora-config: the key is empty\n");
    }
    EXPECT_FALSE(std::filesystem::exists(profile.root() / "config" / "lumoraLocalConfig.dat"));
}

TEST(Set, AKeyThatIsNoXmlNameIsRefusedUnlessForced) {
    const Profile profile;
    for (const auto* key : {"a key", "1key", "<key>"}) {
        const auto outcome = profile.run({"set", key, "x"});
        EXPECT_EQ(outcome.exitCode, 1) << key;
        EXPECT_THAT(outcome.error, HasSubstr("is not an XML name: a document or report with it would be ill-formed; "
                                             "--force sets it anyway"));
    }
    EXPECT_EQ(profile.run({"set", "1key", "x", "--force"}).exitCode, 0);
    EXPECT_EQ(profile.run({"get", "1key"}).out, "x\n");
}

TEST(Set, AValueThatXmlCannotRepresentIsRefusedUnlessForced) {
    const Profile profile;
    for (const auto& [value, reason] : {std::pair{"planted\x01secret", "contains U+0001, which XML cannot represent"},
                                        std::pair{"planted\xEF\xBF\xBEsecret", "contains U+FFFE"}}) {
        const auto outcome = profile.run({"set", "Theme", value});
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_THAT(outcome.error, AllOf(HasSubstr(reason), HasSubstr("U+FFFD; --force"), Not(HasSubstr("planted"))));
    }
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "system\n");
    EXPECT_EQ(profile.shell({"set Theme 'a\x01z' --force", "get Theme"}).out, "a\x01z\n");
}

TEST(Set, WordsThatAreNotUtf8AreRefused) {
    const Profile profile;
    const auto key = profile.run({"set", "key\xff", "x"});
    EXPECT_EQ(key.exitCode, 1);
    EXPECT_THAT(key.error, HasSubstr("is not an XML name"));
    const auto value = profile.run({"set", "Theme", "planted\xffsecret"});
    EXPECT_EQ(value.exitCode, 1);
    EXPECT_THAT(value.error, AllOf(HasSubstr("is not UTF-8"), HasSubstr("U+FFFD; --force"), Not(HasSubstr("planted"))));
}

TEST(Reset, RestoresTheAdministratorsValue) {
    const Profile profile;
    ASSERT_EQ(profile.shell({"set Other x", "set Theme dark"}).exitCode, 0);
    EXPECT_EQ(profile.run({"reset", "THEME"}).exitCode, 0);
    EXPECT_THAT(profile.run({"get", "Theme", "--origin"}).out,
                testing::StartsWith("system  (lumora-config-defaults.xml, "));
}

TEST(Reset, RemovesBothNamesOfAKey) {
    const Profile profile;
    ASSERT_EQ(profile.shell({"set Other x", "set TFTPPrimaryServer mine.example"}).exitCode, 0);
    EXPECT_EQ(profile.run({"reset", "TftpServer1"}).exitCode, 0);
    EXPECT_EQ(profile.run({"get", "TFTPPrimaryServer"}).exitCode, 1);
}

TEST(Reset, RefusesAKeyThatTheUserNeverSet) {
    const Profile profile;
    const auto outcome = profile.run({"reset", "Theme"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.error, HasSubstr("the user has no value for the key 'Theme'"));
}

TEST(Provision, StoresTheSettingsOfOneUrlUntilAnotherIsAllowed) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    const std::string url = "lumora://provision?ServicesDomain=example.org&Unknown=1";
    EXPECT_EQ(profile.run({"provision", url}).exitCode, 0);
    EXPECT_THAT(profile.run({"get", "ServicesDomain", "--origin"}).out,
                testing::StartsWith("example.org  (UrlProvisioningConfigStore, "));
    EXPECT_EQ(profile.run({"get", "Unknown"}).exitCode, 1);

    const auto again = profile.run({"provision", url});
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_THAT(again.error, HasSubstr("not allowed"));

    EXPECT_EQ(profile.run({"reset-provisioning"}).exitCode, 0);
    EXPECT_EQ(profile.run({"provision", url}).exitCode, 0);
}

TEST(Provision, RefusesAUrlWithoutSettings) {
    const Profile profile;
    const auto outcome = profile.run({"provision", "lumora://provision?Unknown=1"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.error, HasSubstr("no setting"));
}

TEST(ResetProvisioning, IsRefusedWithoutAPriorProvisioning) {
    const Profile profile;
    EXPECT_EQ(profile.run({"reset-provisioning"}).exitCode, 1);
}

TEST(Mdm, AddsTheDocumentToTheChain) {
    const Profile profile;
    const auto file = profile.writeDocument("mdm.xml", "<Theme>managed</Theme><Other>1</Other>");
    const auto outcome = profile.shell({"mdm " + file, "get Theme --origin"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_THAT(outcome.out, testing::StartsWith("managed  (MdmConfigStore, "));
    EXPECT_THAT(outcome.error, HasSubstr("MdmConfigStore holds 2 keys"));
}

TEST(Mdm, ADocumentThatIsNotXmlChangesNothing) {
    const Profile profile;
    const auto good = profile.writeDocument("good.xml", "<Theme>managed</Theme>");
    const auto bad = profile.write("bad.xml", "<Config><Group>");
    const auto outcome = profile.shell({"mdm " + good, "mdm " + bad, "get Theme"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.error, HasSubstr("bad.xml: not XML"));
    EXPECT_EQ(outcome.out, "managed\n");
}

} // namespace program_test
