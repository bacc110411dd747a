#include "RunningProgram.h"
#include "ShellTerminal.h"

#include <TemporaryProfile.h>
#include <gmock/gmock.h>
#include <sys/resource.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <optional>
#include <set>
#include <sstream>
#include <vector>

namespace program_test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// A client that `serve` runs.
class LiveCommands : public testing::Test {
protected:
    void start(Arguments arguments = {}) {
        arguments.emplace_back("serve");
        client.emplace(profile, arguments);
        client->receive();
    }
    std::string notice() const {
        return "lumora-config: this is the running client, process " + std::to_string(client->getProcess()) + "\n";
    }

    const Profile profile;
    std::optional<RunningProgram> client;
};

TEST_F(LiveCommands, AValueInTheMemoryOfTheClientHasAnOriginThatSaysSo) {
    const auto document = profile.writeDocument("foreign.xml", "<FromServer>x</FromServer>");
    const auto managed = profile.writeDocument("managed.xml", "<Managed>1</Managed>");
    start({"--store", document + ":Foreign:40"});
    ASSERT_EQ(profile.run({"mdm", managed}).exitCode, 0);
    ASSERT_EQ(profile.run({"memory", "Volatile", "1"}).exitCode, 0);
    const auto originOf = [&](const std::string& key) {
        return profile.run({"get", key, "--json"}).lines().front().at("origin").at("how").get<std::string>();
    };
    EXPECT_EQ(originOf("FromServer"), "in the memory of the client, which does not report the source");
    EXPECT_EQ(originOf("Managed"), "pushed by device management in this run");
    EXPECT_EQ(originOf("Volatile"), "set in memory in this run");
}

TEST_F(LiveCommands, SecretsThatOnlyTheProgramKnowsAreMasked) {
    profile.writePolicy("MyConnectionPasswordOld", "planted-1");
    ASSERT_EQ(profile.run({"set", "FleetConnectionPassword", "-"}, "planted-2").exitCode, 0);
    const auto managed = profile.writeDocument("managed.xml", "<Managed sensitive=\"true\">planted-3</Managed>");
    start();
    ASSERT_EQ(profile.run({"mdm", managed}).exitCode, 0);
    for (const std::string key : {"MyConnectionPasswordOld", "FleetConnectionPassword", "Managed"}) {
        EXPECT_EQ(profile.run({"get", key}).out, "VALUE_HIDDEN\n");
    }
    for (const auto& arguments : {Arguments{"list"}, {"dump", "--effective"}, {"report"}, {"log"}}) {
        EXPECT_THAT(profile.run(arguments).out, Not(HasSubstr("planted-"))) << arguments.front();
    }
}

TEST_F(LiveCommands, TheReportAndThePageAreWrittenToFiles) {
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    start();
    const auto report = (profile.root() / "report.xml").string();
    const auto page = (profile.root() / "page.html").string();
    const auto written = profile.run({"report", "-o", report});
    EXPECT_EQ(written.error, notice() + "report written to " + report + "\n");
    EXPECT_EQ(testing_host::readFile(report) + "\n", profile.run({"report"}).out);
    EXPECT_EQ(profile.run({"report", "--html", page}).exitCode, 0);
    EXPECT_THAT(testing_host::readFile(page),
                AllOf(HasSubstr("lumoraLocalConfig.dat"), HasSubstr("\"dark\""), HasSubstr("DockedWindow"),
                      HasSubstr("is in use by process " + std::to_string(client->getProcess()))));
}

TEST_F(LiveCommands, DoctorKnowsTheWritesThatTheClientCouldNotMake) {
    // The limit makes writes of the client fail instead of ending it.
    auto* const before = std::signal(SIGXFSZ, SIG_IGN);
    start();
    std::signal(SIGXFSZ, before);
    const rlimit small{16, 16};
    ASSERT_EQ(prlimit(client->getProcess(), RLIMIT_FSIZE, &small, nullptr), 0);
    const auto change = profile.run({"set", "Theme", "dark"});
    EXPECT_EQ(change.exitCode, 3);
    EXPECT_THAT(change.error, HasSubstr("Theme is set for this run only, because it is not on the disk: "));
    const auto doctor = profile.run({"doctor"});
    EXPECT_EQ(doctor.exitCode, 1);
    EXPECT_THAT(doctor.out, AllOf(HasSubstr("the last write failed: "),
                                  HasSubstr("is in use by process " + std::to_string(client->getProcess()))));
    EXPECT_THAT(profile.run({"--offline", "doctor"}).out, Not(HasSubstr("the last write failed")));
}

TEST_F(LiveCommands, DoctorFindsNothingWrongWithARunningClient) {
    start();
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    const auto doctor = profile.run({"doctor"});
    EXPECT_EQ(doctor.exitCode, 0) << doctor.out << doctor.error;
    EXPECT_EQ(doctor.error, notice());
}

TEST_F(LiveCommands, RemoveStoreLeavesTheRecordsOfOtherStores) {
    const auto file = profile.writeDocument("a.xml", "<FromServer>x</FromServer>");
    ASSERT_EQ(profile.run({"--store", file + ":TFTPConfigStore:40:cache", "--store", file + ":Tftp:60:cache", "stores"})
                  .exitCode,
              0);
    start();
    const auto refused = profile.run({"remove-store", "TFT"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(profile.run({"get", "PrimaryConfigStores"}).out, "Tftp:61;TFTPConfigStore:41;\n");
    const auto removed = profile.run({"remove-store", "TFTP"});
    EXPECT_EQ(removed.error, notice() + "Tftp removed; its copy on the disk is deleted\n");
    EXPECT_EQ(profile.run({"get", "PrimaryConfigStores"}).out, "TFTPConfigStore:41;\n");
    client->signal(SIGTERM);
    client->waitForEnd();
    EXPECT_EQ(profile.run({"get", "PrimaryConfigStores"}).out, "TFTPConfigStore:41;\n");
}

TEST_F(LiveCommands, WhatIsForARunningClientIsRefusedWithoutOne) {
    for (const auto& command : {Arguments{"refresh"}, Arguments{"memory", "Theme", "dark"}}) {
        const auto outcome = profile.run(command);
        EXPECT_EQ(outcome.exitCode, 3);
        EXPECT_THAT(outcome.error, HasSubstr("no client uses the profile"));
        EXPECT_FALSE(std::filesystem::exists(profile.root() / "config"));
    }
}

TEST_F(LiveCommands, WatchShowsAPolicyADocumentAndAChangeInTheirOrder) {
    const auto managed = profile.writeDocument("managed.xml", "<Managed>1</Managed>");
    start();
    RunningProgram watch(profile, {"watch", "Volume", "Managed", "Theme"});
    watch.receiveMessage();
    profile.writePolicy("Volume", "7");
    EXPECT_EQ(profile.run({"refresh"}).error,
              notice() + "the stores that are not local have read their sources again\n");
    EXPECT_EQ(profile.run({"mdm", managed}).exitCode, 0);
    EXPECT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    const std::vector<std::array<std::string, 3>> expected{{"Volume", "7", "RegistryConfigStore"},
                                                           {"Managed", "1", "MdmConfigStore"},
                                                           {"theme", "dark", "LocalFileConfigStore"}};
    for (const auto& [key, value, storeName] : expected) {
        const auto event = watch.receiveUntil("property", "Value");
        EXPECT_THAT(event.at("key").get<std::string>(), testing::StrCaseEq(key));
        EXPECT_EQ(event.at("new"), value);
        EXPECT_EQ(event.at("store"), storeName);
    }
}

TEST_F(LiveCommands, TheShellRunsItsCommandsOnTheClient) {
    start();
    const auto outcome = profile.shell({"get Theme", "set Theme dark", "set Volume -", "7", "get Theme", "get Volume",
                                        "observe Theme", "reset-data --yes", "keys tftpserver1", "quit"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.out, testing::StartsWith("system\ndark\n7\n"));
    EXPECT_THAT(outcome.out, HasSubstr("TFTPPrimaryServer"));
    const auto refusal = [&](const std::string& name) {
        return "lumora-config: '" + name + "' needs the profile for itself, but process " +
               std::to_string(client->getProcess()) + " uses it\n";
    };
    EXPECT_THAT(outcome.error, AllOf(testing::StartsWith(notice()), HasSubstr(refusal("observe")),
                                     HasSubstr(refusal("reset-data")), HasSubstr("Theme set; in force: \"dark\"")));
    EXPECT_EQ(outcome.error.find(notice(), 1), std::string::npos) << "the client is named once";
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "dark\n");
}

TEST_F(LiveCommands, TheShellHasNoWorkers) {
    start();
    const auto outcome =
        profile.shell({"set Theme dark --worker", "memory Volume 7 --worker", "get Theme", "help set"});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(outcome.error, HasSubstr("there is no option '--worker'"));
    EXPECT_THAT(outcome.out, AllOf(testing::StartsWith("system\n"), Not(HasSubstr("--worker"))));
    EXPECT_EQ(profile.run({"get", "Volume"}).exitCode, 1);
}

TEST_F(LiveCommands, TheShellKeepsNoLineForLaterRuns) {
    start();
    ShellTerminal shell(profile);
    shell.type("get Theme\r");
    shell.await("\nsystem");
    shell.type("quit\r");
    EXPECT_EQ(shell.waitForEnd(), 0);
    EXPECT_FALSE(std::filesystem::exists(profile.root() / "state/lumora-config-history"));
}

/// Returns the words of the text between `begin` and `end` on the page that could be names of commands.
std::set<std::string> readNames(const std::string& page, const std::string& begin, const std::string& end) {
    const auto text = testing_host::readFile(std::filesystem::path(LUMORA_SOURCE_FOLDER) / page);
    const auto from = text.find(begin);
    const auto to = text.find(end, from);
    if (from == std::string::npos || to == std::string::npos) {
        return {};
    }
    std::string names = text.substr(from + begin.size(), to - from - begin.size());
    std::erase(names, '\\');
    std::ranges::replace_if(
        names, [](char c) { return c != '-' && (c < 'a' || c > 'z'); }, ' ');
    std::istringstream words(names);
    return {std::istream_iterator<std::string>(words), {}};
}

TEST_F(LiveCommands, AreThoseThatThePagesList) {
    start();
    const auto help = profile.shell({"help"}).out;
    std::set<std::string> commands;
    std::istringstream lines(help.substr(help.find("Subcommands:") + 13));
    for (std::string line; std::getline(lines, line) && !line.empty();) {
        commands.insert(line.substr(2, line.find_first_of(" ,", 2) - 2));
    }
    commands.erase("quit");
    commands.erase("help");
    EXPECT_EQ(readNames("tools/lumora-config/README.md", "that client carries out", "and the commands of"), commands);
    commands.insert({"and", "shell"});
    EXPECT_EQ(readNames("docs/man/lumora-config.1", "uses the profile, it carries out", "one line on"), commands);
}

TEST_F(LiveCommands, TheShellListsAndSuggestsOnlyWhatTheClientCanCarryOut) {
    std::vector<std::string> names;
    const auto help = profile.shell({"help"}).out;
    std::istringstream lines(help.substr(help.find("Subcommands:") + 13));
    for (std::string line; std::getline(lines, line) && !line.empty();) {
        const auto name = line.substr(2, line.find(' ', 2) - 2);
        // The first would end the shell, the second would write to the working directory.
        if (name != "quit" && name != "bundle") {
            names.push_back(name);
        }
    }
    start();
    const auto liveHelp = profile.shell({"help"}).out;
    Arguments commands;
    for (const auto& name : names) {
        commands.insert(commands.end(), {name, name + " a", name + " a b"});
    }
    const auto messages = profile.shell(commands).error;
    std::size_t listed = 0;
    for (const auto& name : names) {
        const bool isRefused = messages.find("'" + name + "' needs the profile for itself") != std::string::npos;
        const bool isListed = liveHelp.find("\n  " + name + ' ') != std::string::npos;
        EXPECT_NE(isListed, isRefused) << name;
        listed += isListed ? 1 : 0;
    }
    EXPECT_GT(listed, 20U);
    EXPECT_THAT(liveHelp, AllOf(HasSubstr("\n  bundle "), HasSubstr("\n  quit,"), Not(HasSubstr("\n  observe "))));
    EXPECT_THAT(profile.shell({"obsreve Theme"}).error, HasSubstr("there is no command 'obsreve'\n"));
}

TEST_F(LiveCommands, TheShellReportsThatTheClientHasEndedAndFindsTheNextOne) {
    start();
    RunningProgram shell(profile, {"shell"});
    shell.send("get Theme");
    EXPECT_EQ(shell.receive().at("value"), "system");
    client.reset(); // killed
    shell.send("get Theme");
    EXPECT_THAT(shell.receive().at("message").get<std::string>(), HasSubstr("has ended"));
    start();
    shell.send("get Theme");
    EXPECT_EQ(shell.receive().at("value"), "system");
}

} // namespace
} // namespace program_test
