#include "Program.h"

#include <PrivateFiles.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <utility>

namespace program_test {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(Report, ContainsEveryStoreWithoutSecrets) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    ASSERT_EQ(profile.run({"set", "connectionpassword", "planted-secret"}).exitCode, 0);
    const auto outcome = profile.run({"report"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out, StartsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<AllConfigs>\n"));
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("LocalFileConfigStore"), HasSubstr(">dark</"), HasSubstr("</AllConfigs>"),
                                   Not(HasSubstr("planted-secret"))));
}

TEST(Report, IsWrittenToAFile) {
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

TEST(Report, ReplacesTheWholeFileAndRestrictsItToItsOwner) {
    const Profile profile;
    const auto file = profile.write("report", "an older report");
    for (const auto* option : {"-o", "--html"}) {
        testing_host::letEverybodyRead(file);
        // The file is replaced, not truncated, so a reader of the old file still sees its content.
        fs::create_hard_link(file, profile.root() / "old");
        const auto old = testing_host::readFile(file);
        const auto outcome = profile.run({"report", option, file});
        EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
        EXPECT_TRUE(testing_host::readFile(profile.root() / "old") == old);
        EXPECT_FALSE(testing_host::readFile(file) == old);
        EXPECT_TRUE(testing_host::isPrivate(file));
        fs::remove(profile.root() / "old");
    }
}

TEST(Report, ATargetThatIsNotARegularFileIsRefused) {
    const Profile profile;
    const auto pipe = (profile.root() / "pipe").string();
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const auto* option : {"-o", "--html"}) {
        const auto outcome = profile.run({"report", option, pipe});
        EXPECT_EQ(outcome.exitCode, 3);
        EXPECT_EQ(outcome.error, "lumora-config: " + pipe + ": cannot be written: it is not a regular file\n");
        EXPECT_TRUE(fs::is_fifo(pipe));
    }
}

TEST(Report, ReplacesTheTargetOfALink) {
    const Profile profile;
    const auto link = profile.root() / "link";
    fs::create_symlink(profile.write("target", "old"), link);
    for (const auto& [option, start] : {std::pair{"-o", "<?xml"}, std::pair{"--html", "<!DOCTYPE html>"}}) {
        EXPECT_EQ(profile.run({"report", option, link.string()}).exitCode, 0);
        EXPECT_TRUE(fs::is_symlink(link));
        EXPECT_THAT(testing_host::readFile(profile.root() / "target"), StartsWith(start));
    }
}

TEST(Report, AHyphenMeansStandardOutput) {
    const Profile profile;
    const auto plain = profile.run({"report"});
    const auto outcome = profile.run({"report", "-o", "-"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, plain.out);
    EXPECT_EQ(outcome.error, "");
    EXPECT_THAT(profile.run({"report", "--html", "-"}).out, StartsWith("<!DOCTYPE html>"));
    EXPECT_FALSE(fs::exists("-"));
}

TEST(Log, ShowsTheSettingsReport) {
    const Profile profile;
    const auto outcome = profile.run({"log"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out, AllOf(HasSubstr("Master Configuration Settings"), HasSubstr("Defined Values"),
                                   HasSubstr("End Settings")));
}

TEST(ResetData, RequiresConfirmation) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    const auto outcome = profile.run({"reset-data"});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(outcome.error, HasSubstr("--yes"));
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "dark\n");
}

TEST(ResetData, DeletesTheUsersSettingsAndTheCopies) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<FromServer>x</FromServer>");
    ASSERT_EQ(profile.run({"--store", file + ":Foreign:40:cache", "set", "Theme", "dark"}).exitCode, 0);
    ASSERT_EQ(profile.run({"reset-data", "--yes"}).exitCode, 0);
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "system\n");
    EXPECT_EQ(profile.run({"get", "FromServer"}).exitCode, 1);
    EXPECT_TRUE(fs::exists(profile.defaultsFile()));
}

} // namespace program_test
