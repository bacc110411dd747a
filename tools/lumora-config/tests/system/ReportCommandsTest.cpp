#include "Program.h"

#include <TemporaryProfile.h>
#include <gmock/gmock.h>

namespace program_test {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(Report, HoldsEveryStoreWithoutSecrets) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    ASSERT_EQ(profile.run({"set", "connectionpassword", "planted-secret"}).exitCode, 0);
    const auto outcome = profile.run({"report"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out, StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<AllConfigs>\n"));
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("LocalFileConfigStore"), HasSubstr(">dark</"), HasSubstr("</AllConfigs>"),
                                   Not(HasSubstr("planted-secret"))));
}

TEST(Report, GoesIntoAFile) {
    const Profile profile;
    const auto file = (profile.root() / "report.xml").string();
    const auto outcome = profile.run({"report", "-o", file});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(testing_host::readFile(file), HasSubstr("<AllConfigs>"));
}

TEST(Report, AFileThatCannotBeWrittenIsNamed) {
    const Profile profile;
    const auto file = (profile.root() / "absent" / "report.xml").string();
    const auto outcome = profile.run({"report", "-o", file});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.error, HasSubstr(file + ": cannot be written"));
}

TEST(Log, ShowsTheSettingsReport) {
    const Profile profile;
    const auto outcome = profile.run({"log"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("Master Configuration Settings"), HasSubstr("Defined Values"),
                                   HasSubstr("End Settings")));
}

TEST(ResetData, AsksForConfirmation) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    const auto outcome = profile.run({"reset-data"});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(outcome.error, HasSubstr("--yes"));
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "dark\n");
}

TEST(ResetData, TakesTheUsersSettingsAndTheCopies) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<FromServer>x</FromServer>");
    ASSERT_EQ(profile.run({"--store", file + ":Foreign:40:cache", "set", "Theme", "dark"}).exitCode, 0);
    ASSERT_EQ(profile.run({"reset-data", "--yes"}).exitCode, 0);
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "system\n");
    EXPECT_EQ(profile.run({"get", "FromServer"}).exitCode, 1);
    EXPECT_TRUE(fs::exists(profile.defaultsFile()));
}

} // namespace program_test
