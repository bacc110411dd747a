#include "Program.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace program_test {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/// Returns the objects of one type, in order.
std::vector<json> ofType(const Outcome& outcome, const std::string& type) {
    auto lines = outcome.lines();
    std::erase_if(lines, [&](const json& line) { return line.at("type") != type; });
    return lines;
}

std::vector<std::string> describe(const std::vector<json>& notifications) {
    std::vector<std::string> texts;
    texts.reserve(notifications.size());
    for (const auto& line : notifications) {
        texts.push_back(line.at("property").get<std::string>() + ": " + line.at("old").get<std::string>() + " -> " +
                        line.at("new").get<std::string>());
    }
    return texts;
}

} // namespace

TEST(Shell, RunsCommandsUntilTheEndOfItsInput) {
    const Profile profile;
    const auto outcome =
        profile.shell({"# a comment", "", "get Theme", "set 'Greeting' \"hello world\"", "get Greeting"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, "system\nhello world\n");
}

TEST(Shell, QuitIgnoresTheRestOfTheInput) {
    const Profile profile;
    EXPECT_EQ(profile.shell({"get Theme", "quit", "get IP_MODE"}).out, "system\n");
}

TEST(Shell, AFailureDoesNotEndItAndTheFirstOneIsTheExitCode) {
    const Profile profile;
    const auto outcome = profile.shell({"get NoSuchKey", "get", "get Theme"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.out, "system\n");
}

TEST(Shell, HelpListsTheCommandsOfTheShell) {
    const Profile profile;
    const auto outcome = profile.shell({"help"});
    EXPECT_EQ(outcome.exitCode, 0);
    for (const auto* word : {"start", "stop", "refresh", "power-down", "observe", "add-store", "remove-store", "memory",
                             "sensitive", "wait", "quit"}) {
        EXPECT_THAT(outcome.out, HasSubstr(word));
    }
}

TEST(Shell, HelpOfACommandNamesItsOptions) {
    const Profile profile;
    EXPECT_THAT(profile.shell({"help observe"}).out, HasSubstr("--with"));
    EXPECT_EQ(profile.shell({"help observe"}).out, profile.shell({"observe --help"}).out);
}

TEST(Shell, AMistypedCommandOrOptionNamesTheClosest) {
    const Profile profile;
    const auto outcome = profile.shell({"obsreve Theme", "set Theme dark --wroker", "help memroy"});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(outcome.error, HasSubstr("there is no command 'obsreve'; did you mean 'observe'?"));
    EXPECT_THAT(outcome.error, HasSubstr("there is no option '--wroker'; did you mean '--worker'?"));
    EXPECT_THAT(outcome.error, HasSubstr("there is no command 'memroy'; did you mean 'memory'?"));
}

TEST(Shell, AWriteNotifiesTheObserverOfEachProperty) {
    const Profile profile;
    const auto outcome = profile.shell({"observe Theme", "set Theme dark"}, {"--json"});
    const auto notifications = ofType(outcome, "notification");
    EXPECT_THAT(describe(notifications),
                ElementsAre("Value: system -> dark", "isOverridden: false -> true",
                            "ValueStoreName: lumora-config-defaults.xml -> LocalFileConfigStore"))
        << outcome.out;
}

TEST(Shell, ANotificationNamesKeyPropertyValuesAndThread) {
    const Profile profile;
    const auto outcome = profile.shell({"observe Theme --with IP_MODE", "set Theme dark"}, {"--json"});
    const auto notifications = ofType(outcome, "notification");
    ASSERT_FALSE(notifications.empty());
    EXPECT_EQ(notifications.front(), (json{{"type", "notification"},
                                           {"key", "theme"},
                                           {"property", "Value"},
                                           {"old", "system"},
                                           {"new", "dark"},
                                           {"thread", "services"},
                                           {"with", {{"ip_mode", "TWO_STACKS"}}}}));
}

TEST(Shell, AWriteOfAWorkerReachesTheObserverOnTheDispatcher) {
    const Profile profile;
    const auto outcome =
        profile.shell({"observe Fresh", "memory Fresh one --worker", "set Fresh two --worker", "wait"}, {"--json"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out;
    const auto notifications = ofType(outcome, "notification");
    const auto values =
        std::ranges::count_if(notifications, [](const json& line) { return line.at("property") == "Value"; });
    EXPECT_EQ(values, 2) << outcome.out;
    EXPECT_TRUE(std::ranges::all_of(notifications, [](const json& line) { return line.at("thread") == "services"; }));
}

TEST(Shell, AddingAndRemovingAStoreNotifiesTheObserverOnceForEachProperty) {
    const Profile profile;
    const auto file = profile.writeDocument("three.xml", "<Theme>corporate</Theme><New_A>a</New_A><New_B>b</New_B>");
    const auto outcome = profile.shell({"observe New_A --with New_B --with Theme", "add-store " + file + ":Foreign:40",
                                        "explain New_B", "remove-store Foreign", "get New_A", "get Theme"},
                                       {"--json"});
    const auto notifications = ofType(outcome, "notification");
    EXPECT_THAT(describe(notifications),
                ElementsAre("Value:  -> a", "OriginalValue:  -> a", "isDefined: false -> true",
                            "ValueStoreName:  -> Foreign", "OriginalValueStoreName:  -> Foreign", "Value: a -> ",
                            "OriginalValue: a -> ", "isDefined: true -> false", "ValueStoreName: Foreign -> ",
                            "OriginalValueStoreName: Foreign -> "))
        << outcome.out;
    for (std::size_t i = 0; i < notifications.size(); ++i) {
        const auto others =
            i < 5 ? json{{"New_B", "b"}, {"theme", "corporate"}} : json{{"New_B", ""}, {"theme", "system"}};
        EXPECT_EQ(notifications.at(i).at("with"), others) << outcome.out;
    }
    EXPECT_EQ(ofType(outcome, "explanation").at(0).at("value"), "b");
    const auto values = ofType(outcome, "value");
    EXPECT_EQ(values.at(0).at("found"), false);
    EXPECT_EQ(values.at(1).at("value"), "system");
}

TEST(Shell, ARecordGetsTheNextValueOfTheChainWhenItsStoreIsRemoved) {
    const Profile profile;
    const auto file = profile.writeDocument("three.xml", "<Theme>corporate</Theme><New_A>a</New_A><New_B>b</New_B>");
    const auto outcome =
        profile.shell({"observe Theme", "add-store " + file + ":Foreign:40", "remove-store Foreign"}, {"--json"});
    const std::string defaults = "lumora-config-defaults.xml";
    EXPECT_THAT(describe(ofType(outcome, "notification")),
                ElementsAre("Value: system -> corporate", "OriginalValue: system -> corporate",
                            "ValueStoreName: " + defaults + " -> Foreign",
                            "OriginalValueStoreName: " + defaults + " -> Foreign", "Value: corporate -> system",
                            "OriginalValue: corporate -> system", "ValueStoreName: Foreign -> " + defaults,
                            "OriginalValueStoreName: Foreign -> " + defaults))
        << outcome.out;
}

TEST(Shell, ObservingAgainReplacesTheKeysShownWithIt) {
    const Profile profile;
    const auto outcome = profile.shell({"observe Theme", "observe THEME --with IP_MODE", "set Theme dark"}, {"--json"});
    const auto notifications = ofType(outcome, "notification");
    ASSERT_EQ(notifications.size(), 3U) << outcome.out;
    EXPECT_TRUE(notifications.front().at("with").contains("ip_mode"));
}

TEST(Shell, UnobserveEndsTheNotifications) {
    const Profile profile;
    const auto outcome =
        profile.shell({"observe Theme", "unobserve THEME", "set Theme dark", "unobserve Theme"}, {"--json"});
    EXPECT_THAT(ofType(outcome, "notification"), testing::IsEmpty());
    EXPECT_EQ(ofType(outcome, "failure").at(0).at("exitCode"), 1);
}

TEST(Shell, SensitiveHidesTheValueFromThenOn) {
    const Profile profile;
    const auto outcome =
        profile.shell({"sensitive Pin", "observe Pin", "set Pin planted-secret", "get Pin", "list Pin"}, {"--json"});
    EXPECT_THAT(outcome.out, testing::Not(HasSubstr("planted-secret")));
    EXPECT_EQ(ofType(outcome, "value").at(0).at("value"), "VALUE_HIDDEN");
}

TEST(Shell, AMemoryValueIsNotInTheNextRun) {
    const Profile profile;
    EXPECT_THAT(profile.shell({"memory Fresh one", "get Fresh --origin"}).out,
                testing::StartsWith("one  (InMemoryConfigStore, "));
    EXPECT_EQ(profile.run({"get", "Fresh"}).exitCode, 1);
}

TEST(Shell, StopDropsStoresThatAreNotLocalAndStartReadsTheUsersFileAgain) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<FromServer>x</FromServer>");
    const auto outcome =
        profile.shell({"set Theme dark", "add-store " + file + ":Foreign:40", "stop", "get Theme", "get FromServer",
                       "add-store " + file + ":Foreign:40", "start", "get Theme", "stores"},
                      {"--json"});
    const auto values = ofType(outcome, "value");
    ASSERT_EQ(values.size(), 3U) << outcome.out;
    EXPECT_EQ(values[0].at("value"), "system");
    EXPECT_EQ(values[1].at("found"), false);
    EXPECT_EQ(values[2].at("value"), "dark");
    const auto failures = ofType(outcome, "failure");
    ASSERT_EQ(failures.size(), 2U) << outcome.out;
    EXPECT_EQ(failures[1].at("command"), "add-store");
    EXPECT_THAT(storeNames(outcome.lines().back()), ElementsAre("LocalFileConfigStore", "UrlProvisioningConfigStore",
                                                                "InMemoryConfigStore", "lumora-config-defaults.xml"));
}

TEST(Shell, RefreshReadsTheRegistryAgainAndDropsForeignStores) {
    const Profile profile;
    profile.writePolicy("Theme", "corporate");
    const auto file = profile.writeDocument("a.xml", "<FromServer>x</FromServer>");
    const auto outcome = profile.shell(
        {"stop", "start", "get Theme", "add-store " + file + ":Foreign:40", "refresh", "get Theme", "get FromServer"},
        {"--json"});
    const auto values = ofType(outcome, "value");
    ASSERT_EQ(values.size(), 3U) << outcome.out;
    EXPECT_EQ(values[0].at("value"), "system");
    EXPECT_EQ(values[1].at("value"), "corporate");
    EXPECT_EQ(values[2].at("found"), false);
}

TEST(Shell, APowerDownKeepsTheUsersSettings) {
    const Profile profile;
    const auto outcome = profile.shell({"set Theme dark", "wait", "power-down", "get Theme"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_EQ(outcome.out, "dark\n");
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "dark\n");
}

TEST(Shell, ObservingAnOldNameFollowsTheNewOne) {
    const Profile profile;
    const auto outcome = profile.shell({"observe TftpServer1", "set TFTPPrimaryServer t.example"}, {"--json"});
    const auto notifications = ofType(outcome, "notification");
    ASSERT_FALSE(notifications.empty()) << outcome.out;
    EXPECT_EQ(notifications.front().at("key"), "TFTPPrimaryServer");
    EXPECT_EQ(notifications.front().at("new"), "t.example");
}

} // namespace program_test
