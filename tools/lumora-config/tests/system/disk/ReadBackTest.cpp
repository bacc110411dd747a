#include "Program.h"

#include <SmallDisk.h>
#include <gmock/gmock.h>

namespace program_test {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr auto link = "lumora://p?ServicesDomain=example.org";

Profile& withSdkMode(Profile& profile) {
    profile.write("resources/lumora-config-defaults.xml",
                  "<Lumora><userConfig name=\"Lumora_SDK_Mode\" value=\"true\"/>"
                  "<userConfig name=\"Theme\" value=\"system\"/></Lumora>");
    return profile;
}

} // namespace

/// A profile whose configuration directory is a separate file system.
class ReadBack : public testing::Test {
protected:
    void SetUp() override {
        if (!disk.getObstacle().empty()) {
            GTEST_SKIP() << "this machine does not permit mounting: " << disk.getObstacle();
        }
        ASSERT_EQ(profile.run({"set", "Kept", "old"}).exitCode, 0);
    }

    std::filesystem::path makeConfigDirectory() const {
        std::filesystem::create_directory(profile.root() / "config");
        return profile.root() / "config";
    }
    void expectNotOnDisk(const Outcome& outcome, const std::string& message) const {
        EXPECT_EQ(outcome.exitCode, 3) << outcome.error;
        EXPECT_THAT(outcome.error, HasSubstr(message));
    }
    std::string document(const std::string& elements = "<FromServer>x</FromServer>") const {
        return profile.writeDocument("a.xml", elements);
    }

    const Profile profile;
    testing_host::SmallDisk disk{makeConfigDirectory(), std::size_t{256} << 10};
};

TEST_F(ReadBack, ASetOnAFullDiskFails) {
    disk.fill();
    expectNotOnDisk(profile.run({"set", "Theme", "dark"}), "Theme is set for this run only");
    disk.empty();
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "system\n");
}

TEST_F(ReadBack, ASetOnAReadOnlyDiskFailsAndNamesTheCause) {
    ASSERT_TRUE(disk.setReadOnly(true));
    expectNotOnDisk(profile.run({"set", "Theme", "dark"}),
                    "Read-only file system; the program tries again until it ends");
}

TEST_F(ReadBack, ASetInTheShellFailsAndTheShellContinues) {
    ASSERT_TRUE(disk.setReadOnly(true));
    const auto outcome = profile.shell({"set Theme dark", "get Theme"});
    expectNotOnDisk(outcome, "Theme is set for this run only");
    EXPECT_EQ(outcome.out, "dark\n");
}

TEST_F(ReadBack, WaitReadsBackAWorkersSet) {
    ASSERT_TRUE(disk.setReadOnly(true));
    const auto outcome = profile.shell({"set Theme dark --worker", "wait"}, {"--json"});
    const auto lines = outcome.lines();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(lines[0].at("type"), "done");
    EXPECT_EQ(lines[1].at("type"), "failure");
    EXPECT_EQ(lines[1].at("command"), "wait");
    EXPECT_EQ(outcome.exitCode, 3);
}

TEST_F(ReadBack, TheEndOfTheShellReadsBackAWorkersSet) {
    ASSERT_TRUE(disk.setReadOnly(true));
    expectNotOnDisk(profile.shell({"set Theme dark --worker"}), "Theme is set for this run only");
}

TEST_F(ReadBack, AWorkersSetThatWasResetSinceSucceeds) {
    const auto outcome = profile.shell({"set Theme dark --worker", "reset Theme", "wait"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
}

TEST_F(ReadBack, AResetOnAReadOnlyDiskFails) {
    ASSERT_TRUE(disk.setReadOnly(true));
    expectNotOnDisk(profile.run({"reset", "Kept"}), "the disk still holds the user's value");
    EXPECT_EQ(profile.run({"get", "Kept"}).out, "old\n");
}

TEST_F(ReadBack, AResetFailsIfTheUsersFileCannotBeRead) {
    RunningShell shell(profile);
    std::filesystem::remove(profile.root() / "config/lumoraLocalConfig.dat");
    std::filesystem::remove(profile.root() / "config/lumoraLocalConfig_backup.dat");
    std::filesystem::create_directory(profile.root() / "config/lumoraLocalConfig.dat");
    ASSERT_TRUE(disk.setReadOnly(true));
    shell.send("reset Kept");
    const auto answer = shell.receive();
    EXPECT_EQ(answer.at("type"), "failure") << answer;
    EXPECT_THAT(answer.at("message").get<std::string>(), HasSubstr("cannot be read back"));
}

TEST_F(ReadBack, AProvisioningOnAReadOnlyDiskFails) {
    ASSERT_TRUE(disk.setReadOnly(true));
    expectNotOnDisk(profile.run({"provision", link}), "not on the disk");
    EXPECT_EQ(profile.run({"get", "ServicesDomain", "--store", "UrlProvisioningConfigStore"}).exitCode, 1);
}

TEST_F(ReadBack, AResetProvisioningOnAReadOnlyDiskFails) {
    ASSERT_EQ(profile.run({"provision", link}).exitCode, 0);
    ASSERT_TRUE(disk.setReadOnly(true));
    expectNotOnDisk(profile.run({"reset-provisioning"}), "the disk still holds");
}

TEST_F(ReadBack, ACopyOnAReadOnlyDiskFailsAndTheCommandStillRuns) {
    ASSERT_TRUE(disk.setReadOnly(true));
    const auto outcome = profile.run({"--store", document() + ":Foreign:40:cache", "get", "FromServer"});
    expectNotOnDisk(outcome, "copy of Foreign is not on the disk");
    EXPECT_EQ(outcome.out, "x\n");
}

TEST_F(ReadBack, ACopyInTheShellFails) {
    ASSERT_TRUE(disk.setReadOnly(true));
    expectNotOnDisk(profile.shell({"add-store " + document() + ":Foreign:40:cache"}),
                    "copy of Foreign is not on the disk");
}

TEST_F(ReadBack, ARemovedStoreOnAReadOnlyDiskFails) {
    ASSERT_EQ(profile.run({"--store", document() + ":Foreign:40:cache", "stores"}).exitCode, 0);
    ASSERT_TRUE(disk.setReadOnly(true));
    expectNotOnDisk(profile.run({"remove-store", "Foreign"}), "Foreign");
    EXPECT_EQ(profile.run({"get", "FromServer"}).out, "x\n");
}

TEST_F(ReadBack, AResetOfTheDataOnAReadOnlyDiskFails) {
    ASSERT_TRUE(disk.setReadOnly(true));
    expectNotOnDisk(profile.run({"reset-data", "--yes"}), "the reset is not complete: ");
    EXPECT_EQ(profile.run({"get", "Kept"}).out, "old\n");
}

TEST_F(ReadBack, ValuesWithBlanksAndMarkupAreReadBack) {
    const std::string odd = " \tblanks\nand <markup/> & \"quotes\" \r\n";
    EXPECT_EQ(profile.run({"set", "Odd", odd}).exitCode, 0);
    EXPECT_EQ(profile.run({"get", "Odd"}).out, odd + "\n");
    const auto file = document("<A>  x  </A><B><C>nested</C></B><D/><E><![CDATA[<&>]]></E>"
                               "<userConfig name=\"F\" value=\"  blanks  \"/>");
    const auto outcome = profile.run({"--store", file + ":Foreign:40:cache", "stores"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
}

TEST(ReadBackOfSet, SucceedsForAnOldNameStoredUnderItsNewName) {
    const Profile profile;
    const auto outcome = profile.run({"set", "VVM_Mailstore_Server_0", "v.example"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_EQ(profile.run({"reset", "VVM_Mailstore_Server_0"}).exitCode, 0);
    EXPECT_EQ(profile.run({"get", "VoicemailPrimaryServer"}).exitCode, 1);
}

TEST(ReadBackOfSet, SucceedsWithADamagedBackup) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    profile.write("config/lumoraLocalConfig_backup.dat", "damaged");
    ASSERT_EQ(profile.run({"set", "Theme", "light"}).exitCode, 0);
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "light\n");
}

TEST(ReadBackOfSet, FailsAndNamesTheBackupIfItIsDamagedDuringTheRun) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    RunningShell shell(profile);
    profile.write("config/lumoraLocalConfig_backup.dat", "damaged");
    shell.send("set Theme light");
    const auto answer = shell.receive();
    EXPECT_EQ(answer.at("type"), "failure");
    EXPECT_EQ(answer.at("exitCode"), 3);
    EXPECT_THAT(std::string(answer.at("message")), HasSubstr("is not written while its backup is damaged"));
}

TEST(ReadBackOfSet, FailsAfterAPowerDownUntilARefresh) {
    const Profile profile;
    const auto outcome = profile.shell({"power-down", "set Theme dark", "refresh", "set Theme light"}, {"--json"});
    const auto lines = outcome.lines();
    ASSERT_EQ(lines.size(), 4U) << outcome.out;
    EXPECT_EQ(lines[1].at("type"), "failure");
    EXPECT_EQ(lines[1].at("exitCode"), 3);
    EXPECT_THAT(std::string(lines[1].at("message")), HasSubstr("a shutdown of the machine is announced"));
    EXPECT_EQ(lines[3].at("type"), "done");
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "light\n");
}

TEST(ReadBackOfSet, ReportsInSdkModeThatTheSettingIsVolatile) {
    Profile profile;
    const auto outcome = withSdkMode(profile).run({"set", "Theme", "dark"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.error, AllOf(HasSubstr("for this run only"), HasSubstr("SDK mode")));
}

TEST(ReadBackOfCopies, ReportsInSdkModeThatThereIsNone) {
    Profile profile;
    const auto file = profile.writeDocument("a.xml", "<FromServer>x</FromServer>");
    const auto outcome = withSdkMode(profile).run({"--store", file + ":Foreign:40:cache", "get", "FromServer"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.out, "x\n");
    EXPECT_THAT(outcome.error, HasSubstr("SDK mode"));
}

TEST(ReadBackOfCopies, FailsForAKeyThatMakesTheDocumentUnreadable) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<userConfig name=\"two words\" value=\"x\"/>");
    const auto outcome = profile.run({"--store", file + ":Foreign:40:cache", "get", "two words"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.error, HasSubstr("cannot be read back"));
}

TEST(ReadBackOfCopies, FailsForANameThatLeadsOutOfTheFolder) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<FromServer>x</FromServer>");
    const auto outcome = profile.run({"--store", file + ":F/../x:40:cache", "get", "FromServer"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.error, HasSubstr("F/../x"));
}

TEST(ReadBackOfCopies, FailsForANameThatTheRecordCannotContain) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<FromServer>x</FromServer>");
    const auto outcome = profile.run({"--store", file + ":A;B:40:cache", "get", "FromServer"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.error, HasSubstr("the record of the copy of A;B is not on the disk"));
}

TEST(ReadBackOfAResetOfTheData, FailsIfThePolicyStillExists) {
    const Profile profile;
    profile.writePolicy("Theme", "corporate");
    const auto folder = profile.root() / "data/registry";
    testing_host::SmallDisk disk(folder, std::size_t{64} << 10);
    if (!disk.getObstacle().empty()) {
        GTEST_SKIP() << "this machine does not permit mounting: " << disk.getObstacle();
    }
    profile.writePolicy("Theme", "corporate");
    ASSERT_TRUE(disk.setReadOnly(true));
    const auto outcome = profile.run({"reset-data", "--yes"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.error, HasSubstr("policy.reg still exists"));
}

/// A change that takes long to write because the file is large.
class PendingChange : public testing::Test {
protected:
    PendingChange() { EXPECT_EQ(profile.shell({"set Big " + std::string(4000000, 'x')}).exitCode, 0); }

    const Profile profile;
};

TEST_F(PendingChange, IsNotLostByAPowerDown) {
    const auto outcome = profile.shell({"set Small 1 --worker", "power-down"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_EQ(profile.run({"get", "Small"}).out, "1\n");
}

TEST_F(PendingChange, IsNotLostByARefresh) {
    const auto outcome = profile.shell({"set Small 1 --worker", "refresh", "get Small"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_EQ(outcome.out, "1\n");
}

TEST(ReadBackOfAReset, FindsTheUsersLastKeyRemoved) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    const auto outcome = profile.run({"reset", "Theme"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "system\n");
}

TEST(ReadBackOfAReset, FindsProvisioningRemovedIfItWasTheLastKey) {
    const Profile profile;
    ASSERT_EQ(profile.run({"provision", link}).exitCode, 0);
    const auto outcome = profile.run({"reset-provisioning"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_EQ(profile.run({"get", "AllowUrlProvisioning", "--store", "LocalFileConfigStore"}).exitCode, 1);
}

} // namespace program_test
