#include "Program.h"

#include <gmock/gmock.h>

namespace program_test {

using nlohmann::json;
using testing::HasSubstr;

namespace {

json onlyLine(const Outcome& outcome) {
    const auto lines = outcome.lines();
    EXPECT_EQ(lines.size(), 1U) << outcome.out;
    return lines.empty() ? json() : lines.front();
}

} // namespace

TEST(Json, OfAValue) {
    const Profile profile;
    EXPECT_EQ(onlyLine(profile.run({"--json", "get", "Theme"})), (json{{"type", "value"},
                                                                       {"key", "Theme"},
                                                                       {"found", true},
                                                                       {"value", "system"},
                                                                       {"store", "lumora-config-defaults.xml"},
                                                                       {"underOldName", false}}));
}

TEST(Json, OfAMissKeepsTheMessageOnStandardError) {
    const Profile profile;
    const auto outcome = profile.run({"--json", "get", "NoSuchKey"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(onlyLine(outcome), (json{{"type", "value"}, {"key", "NoSuchKey"}, {"found", false}}));
    EXPECT_THAT(outcome.error, HasSubstr("no store holds the key"));
}

TEST(Json, OfAnExplanation) {
    const Profile profile;
    const auto file = profile.writeDocument("old.xml", "<TftpServer1>old.example</TftpServer1>");
    const auto object =
        onlyLine(profile.run({"--json", "--store", file + ":Foreign:40", "explain", "TFTPPrimaryServer"}));
    EXPECT_EQ(object.at("type"), "explanation");
    EXPECT_EQ(object.at("newName"), "TFTPPrimaryServer");
    EXPECT_EQ(object.at("oldName"), "TftpServer1");
    EXPECT_EQ(object.at("value"), "old.example");
    EXPECT_EQ(object.at("underOldName"), true);
    EXPECT_EQ(object.at("administrator").at("value"), "old.example");
    EXPECT_EQ(object.at("overridden"), false);
    EXPECT_EQ(object.at("defined"), true);
    EXPECT_EQ(object.at("originalStore"), "Foreign");
    const auto& opinion = object.at("stores").at(2);
    EXPECT_EQ(opinion,
              (json{{"priority", 40},
                    {"name", "Foreign"},
                    {"readOnly", true},
                    {"local", false},
                    {"keys", 1},
                    {"wins", true},
                    {"holds", json::array({{{"name", "TftpServer1"}, {"value", "old.example"}, {"wins", true}}})}}));
}

TEST(Json, OfAList) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    const auto object = onlyLine(profile.run({"--json", "list", "them"}));
    EXPECT_EQ(object.at("type"), "list");
    ASSERT_EQ(object.at("values").size(), 1U);
    const auto& listed = object.at("values").at(0);
    EXPECT_EQ(listed.at("value"), "dark");
    EXPECT_EQ(listed.at("store"), "LocalFileConfigStore");
    EXPECT_EQ(listed.at("overridden"), true);
}

TEST(Json, OfACommandThatIsDone) {
    const Profile profile;
    const auto object = onlyLine(profile.run({"--json", "set", "Theme", "dark"}));
    EXPECT_EQ(object.at("type"), "done");
    EXPECT_EQ(object.at("command"), "set");
}

TEST(Json, OfTheReport) {
    const Profile profile;
    const auto object = onlyLine(profile.run({"--json", "report"}));
    EXPECT_EQ(object.at("type"), "report");
    EXPECT_THAT(object.at("text").get<std::string>(), HasSubstr("<AllConfigs>"));
}

TEST(Json, TheShellTellsFailuresAsObjectsToo) {
    const Profile profile;
    const auto outcome = profile.shell({"get NoSuchKey", "no-such-command"}, {"--json"});
    EXPECT_EQ(outcome.exitCode, 1);
    const auto lines = outcome.lines();
    ASSERT_EQ(lines.size(), 3U) << outcome.out;
    EXPECT_EQ(lines[1].at("type"), "failure");
    EXPECT_EQ(lines[1].at("command"), "get");
    EXPECT_EQ(lines[1].at("exitCode"), 1);
    EXPECT_EQ(lines[2].at("exitCode"), 2);
    EXPECT_EQ(outcome.error, "");
}

TEST(Json, BytesThatAreNotUtf8DoNotEndTheProgram) {
    const Profile profile;
    const auto outcome = profile.run({"--json", "get", "a\xff"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(onlyLine(outcome).at("found"), false);
}

} // namespace program_test
