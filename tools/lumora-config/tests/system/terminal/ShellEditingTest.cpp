#include "ShellTerminal.h"

#include <gmock/gmock.h>

#include <csignal>
#include <fstream>
#include <sstream>

namespace program_test {

using testing::HasSubstr;

namespace {

constexpr auto shellPrompt = "lumora> ";

std::filesystem::path historyOf(const Profile& profile) {
    return profile.root() / "state/lumora-config-history";
}

std::string readHistory(const Profile& profile) {
    std::ifstream stream(historyOf(profile));
    std::ostringstream content;
    content << stream.rdbuf();
    return content.str();
}

/// Types the lines and leaves the shell.
void typeLines(const Profile& profile, const Arguments& lines) {
    ShellTerminal shell(profile);
    for (const auto& line : lines) {
        shell.type(line + '\r');
        shell.await("\n");
        shell.await(shellPrompt);
    }
    shell.type("quit\r");
    EXPECT_NE(shell.waitForEnd(), 128 + SIGKILL);
}

} // namespace

TEST(ShellEditing, TabCompletesACommandAndAKeyIgnoringCase) {
    const Profile profile;
    ShellTerminal shell(profile);
    shell.type("descr\tthEm\t\r");
    shell.await("value      \"system\"");
}

TEST(ShellEditing, TabCompletesAStore) {
    const Profile profile;
    profile.run({"set", "Theme", "dark"});
    ShellTerminal shell(profile);
    shell.type("get Theme --store localf\t\r");
    shell.await("\ndark");
}

TEST(ShellEditing, TabCompletesAStoreThatTheShellHasAdded) {
    const Profile profile;
    const auto document = profile.writeDocument("a.xml", "<OnlyHere>present</OnlyHere>");
    ShellTerminal shell(profile);
    shell.type("add-store '" + document + ":A store:40'\r");
    shell.await(shellPrompt);
    shell.type("get OnlyH\t--store A\t\r");
    shell.await("\npresent");
}

TEST(ShellEditing, TabShowsTheChoicesAndKeepsTheLine) {
    const Profile profile;
    ShellTerminal shell(profile);
    shell.type("re\t");
    EXPECT_THAT(shell.await("reset-data"), HasSubstr("refresh"));
    shell.type("port -o -\r");
    shell.await("<?xml");
}

TEST(ShellEditing, KeysMoveAndEraseWholeCharacters) {
    const Profile profile;
    ShellTerminal shell(profile);
    shell.type("get Thme\xC3\xBC\x7F\x02\x02"
               "e\r");
    shell.await("\nsystem");
}

TEST(ShellEditing, TheHistoryIsReadByTheNextShell) {
    const Profile profile;
    typeLines(profile, {"get Theme", "stores"});
    ShellTerminal shell(profile);
    shell.type("\x10\x10\r");
    shell.await("\nsystem");
}

TEST(ShellEditing, TheHistoryHasNoLineFromAPipe) {
    const Profile profile;
    EXPECT_EQ(profile.shell({"get Theme"}).out, "system\n");
    EXPECT_FALSE(std::filesystem::exists(historyOf(profile)));
}

TEST(ShellEditing, TheHistoryIsReadableByItsOwnerOnly) {
    const Profile profile;
    typeLines(profile, {"get Theme"});
    const auto permissions = std::filesystem::status(historyOf(profile)).permissions();
    EXPECT_EQ(permissions, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

TEST(ShellEditing, TheHistoryHasNoLineThatSetsASensitiveKeyOrContainsASecret) {
    const Profile profile;
    typeLines(profile, {"get Theme", "set connectionpassword planted-1", "memory CONNECTIONUSERNAME planted-2",
                        "sett connectionpassword planted-3", "get X --store planted-1", "set Theme 'planted-4",
                        "provision x://y?connectionpassword=planted%2D5", "set FleetConnectionPassword planted-6",
                        "get connectionpassword"});
    EXPECT_EQ(readHistory(profile), "get Theme\nget connectionpassword\n");
}

TEST(ShellEditing, TheLinesOfAKeyThatBecomesSensitiveAreRemovedFromTheHistory) {
    const Profile profile;
    typeLines(profile, {"set Own planted", "get Theme", "sensitive Own"});
    EXPECT_EQ(readHistory(profile), "get Theme\nsensitive Own\n");
}

TEST(ShellEditing, ATerminalWithoutCursorGetsThePlainPrompt) {
    const Profile profile;
    ShellTerminal shell(profile, "dumb");
    shell.type("get Theme\n");
    shell.await("\nsystem");
    shell.await(shellPrompt);
    EXPECT_TRUE(shell.isInUsualMode());
    EXPECT_FALSE(std::filesystem::exists(historyOf(profile)));
}

TEST(ShellEditing, TheEndOfTheInputEndsTheShell) {
    const Profile profile;
    ShellTerminal shell(profile);
    shell.type("\x04");
    EXPECT_EQ(shell.waitForEnd(), 0);
}

class EditedEndSignal : public testing::TestWithParam<int> {};

TEST_P(EditedEndSignal, EndsTheShellAfterWritingChangesAndRestoringTheTerminal) {
    const Profile profile;
    ShellTerminal shell(profile);
    shell.type("set Theme dark\r");
    shell.await("\n");
    shell.await(shellPrompt);
    shell.type("set Never 1");
    shell.await("set Never 1");
    shell.signal(GetParam());
    EXPECT_EQ(shell.waitForEnd(), 128 + GetParam());
    EXPECT_TRUE(shell.isInUsualMode());
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "dark\n");
    EXPECT_EQ(profile.run({"get", "Never"}).exitCode, 1);
}

INSTANTIATE_TEST_SUITE_P(Kinds, EditedEndSignal, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST(ShellEditing, TheInterruptKeyEndsTheShell) {
    const Profile profile;
    ShellTerminal shell(profile);
    shell.type("set Never 1");
    shell.await("set Never 1");
    shell.type("\x03");
    EXPECT_EQ(shell.waitForEnd(), 128 + SIGINT);
}

} // namespace program_test
