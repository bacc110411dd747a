#include "RunningProgram.h"

#include <kyr/LocalConnection.h>
#include <kyr/LocalSocket.h>
#include <kyr/StringUtils.h>

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <future>
#include <optional>

namespace program_test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using namespace std::chrono_literals;

Arguments inForm(Arguments command, bool json) {
    if (json) {
        command.emplace_back("--json");
    }
    return command;
}

/// Returns the messages of a command on a running client without the first line, which names the client.
std::string withoutNotice(const std::string& messages) {
    return messages.substr(messages.find('\n') + 1);
}

/// Starts clients with `serve` and talks to them.
class Live : public testing::Test {
protected:
    std::string socketPath() const {
        return KyrCoreUtils::LocalSocket::getPathFor((profile.root() / "config").string(),
                                                     (profile.root() / "state").string());
    }

    nlohmann::json ask(const nlohmann::json& request) const {
        KyrCoreUtils::LocalConnection connection(socketPath());
        std::string line;
        if (!connection.sendLine(request.dump(), 20s) ||
            connection.receiveLine(line, 20s) != KyrCoreUtils::LocalConnection::Received::Line) {
            return {{"type", "none"}};
        }
        return nlohmann::json::parse(line);
    }

    void set(const std::string& key, const std::string& value) const {
        ASSERT_EQ(ask({{"verb", "set"}, {"key", key}, {"value", value}}).at("type"), "done");
    }

    const Profile profile;
};

TEST_F(Live, ServePrintsOneLineAnswersAndEndsWithTheSignal) {
    for (const int number : {SIGTERM, SIGINT}) {
        RunningProgram client(profile, {"serve"});
        const auto ready = client.receive();
        EXPECT_EQ(ready.at("type"), "ready");
        EXPECT_THAT(ready.at("text").get<std::string>(), HasSubstr(socketPath()));
        EXPECT_EQ(ask({{"verb", "get"}, {"key", "Theme"}}).at("value"), "system");
        client.signal(number);
        EXPECT_EQ(client.waitForEnd(), 0);
        EXPECT_FALSE(std::filesystem::exists(socketPath()));
    }
}

TEST_F(Live, ServeAcceptsStoresAndTheBootstrapFile) {
    const auto document =
        profile.writeDocument("foreign.xml", "<Presence_Server_Address>a.example</Presence_Server_Address>");
    const auto bootstrap = profile.write("bootstrap.properties", "FromInstaller: yes\n");
    RunningProgram client(profile, {"--store", document + ":Foreign:40", "--bootstrap", bootstrap + ":250", "serve"});
    client.receive();
    EXPECT_EQ(ask({{"verb", "get"}, {"key", "Presence_Server_Address"}}).at("store"), "Foreign");
    EXPECT_EQ(ask({{"verb", "get"}, {"key", "FromInstaller"}}).at("found"), true);
}

TEST_F(Live, AChangeIsOnTheDiskAfterTheClientWasKilled) {
    {
        RunningProgram client(profile, {"serve"});
        client.receive();
        set("Theme", "dark");
    } // killed
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "dark\n");
}

TEST_F(Live, CommandsGiveTheSameAnswersAsWithoutAClient) {
    profile.writePolicy("Volume", "5");
    profile.run({"set", "Theme", "dark"});
    profile.run({"provision", "lumora://provision?ServicesDomain=example.org"});
    const std::vector<Arguments> commands{{"get", "Theme"},
                                          {"get", "Theme", "--origin"},
                                          {"get", "Volume", "--origin"},
                                          {"get", "ServicesDomain", "--origin"},
                                          {"get", "Theme", "--admin", "--origin"},
                                          {"get", "Unknown"},
                                          {"get", "Themee"},
                                          {"explain", "Theme"},
                                          {"explain", "TftpServer1"},
                                          {"explain", "ServicesDomian"},
                                          {"list"},
                                          {"list", "th"},
                                          {"list", "unknown"},
                                          {"list", "--regexp", "^th"},
                                          {"list", "--value", "dark"},
                                          {"list", "--store", "LocalFileConfigStore"},
                                          {"list", "--store", "lumora-config-defaults.xml", "t*"},
                                          {"list", "--store", "None"},
                                          {"list", "--overridden"},
                                          {"list", "--sensitive"},
                                          {"keys"},
                                          {"keys", "tftp*"},
                                          {"keys", "--sensitive"},
                                          {"keys", "nothing"},
                                          {"describe", "Theme"},
                                          {"describe", "tftpserver1"},
                                          {"describe", "ServicesDomian"},
                                          {"stores"},
                                          {"report"},
                                          {"log"},
                                          {"set", "a b", "1"},
                                          {"set", "Telephony_Enabled", "perhaps"},
                                          {"reset", "Unknown"},
                                          {"remove-store", "None"}};
    std::vector<Outcome> before;
    for (const auto& command : commands) {
        for (const bool json : {false, true}) {
            before.push_back(profile.run(inForm(command, json)));
        }
    }
    RunningProgram client(profile, {"serve"});
    client.receive();
    auto expected = before.begin();
    for (const auto& command : commands) {
        for (const bool json : {false, true}) {
            SCOPED_TRACE(testing::PrintToString(command));
            const auto outcome = profile.run(inForm(command, json));
            EXPECT_EQ(outcome.out, expected->out);
            EXPECT_EQ(outcome.exitCode, expected->exitCode);
            EXPECT_THAT(outcome.error, HasSubstr("process " + std::to_string(client.getProcess())));
            EXPECT_EQ(withoutNotice(outcome.error), expected->error);
            ++expected;
        }
    }
}

TEST_F(Live, ExplainGivesTheSameAnswerAsWithoutAClientWithTheOrigins) {
    profile.run({"set", "Theme", "dark"});
    const auto theme = profile.run({"explain", "Theme", "--json"});
    const auto renamed = profile.run({"explain", "TftpServer1", "--json"});
    EXPECT_THAT(theme.out,
                AllOf(HasSubstr("lumoraLocalConfig.dat\",\"line\":"), HasSubstr("-defaults.xml\",\"line\":")));
    RunningProgram client(profile, {"serve"});
    client.receive();
    EXPECT_EQ(profile.run({"explain", "Theme", "--json"}).out, theme.out);
    EXPECT_EQ(profile.run({"explain", "TftpServer1", "--json"}).out, renamed.out);
}

TEST_F(Live, ASetInOneProcessIsSeenInAnother) {
    RunningProgram client(profile, {"serve"});
    client.receive();
    RunningProgram watch(profile, {"watch"});
    watch.receiveMessage();
    EXPECT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    EXPECT_EQ(watch.receiveUntil("property", "Value").at("new"), "dark");
    EXPECT_EQ(profile.run({"--live", "reset", "Theme"}).exitCode, 0);
    EXPECT_EQ(watch.receiveUntil("property", "Value").at("new"), "system");
}

TEST_F(Live, OfflineForbidsAndLiveRequiresTheClient) {
    EXPECT_EQ(profile.run({"--live", "get", "Theme"}).exitCode, 3);
    RunningProgram client(profile, {"serve"});
    client.receive();
    EXPECT_EQ(profile.run({"--live", "get", "Theme"}).exitCode, 0);
    const auto offline = profile.run({"--offline", "set", "Theme", "dark"});
    EXPECT_EQ(offline.exitCode, 3);
    EXPECT_THAT(offline.error, HasSubstr("in use by process " + std::to_string(client.getProcess())));
    EXPECT_EQ(profile.run({"reset-data", "--yes"}).exitCode, 3);
}

TEST_F(Live, AReadingCommandThatTheClientCannotAnswerIsRefusedUnlessItIsOffline) {
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    RunningProgram client(profile, {"serve"});
    client.receive();
    const auto store = profile.writeDocument("store.xml", "<Note>a</Note>") + ":Extra:40";
    const auto policy = (profile.root() / "policy.reg").string();
    for (const Arguments& command : {Arguments{"import-policy", "--dry-run", policy}, {"--store", store, "dump"}}) {
        const auto refused = profile.run(command);
        EXPECT_EQ(refused.exitCode, 3);
        EXPECT_THAT(refused.error, HasSubstr("in use by process " + std::to_string(client.getProcess())));
    }
    const auto offline = profile.run({"--offline", "dump"});
    EXPECT_EQ(offline.exitCode, 0) << offline.error;
    EXPECT_THAT(offline.out, HasSubstr("dark"));
}

/// Sets the runtime directory of the processes that are started, until destroyed.
class RuntimeDirectory {
public:
    explicit RuntimeDirectory(const std::string& path) {
        if (const char* const value = std::getenv(name)) {
            before = value;
        }
        setenv(name, path.c_str(), 1);
    }
    ~RuntimeDirectory() { before ? setenv(name, before->c_str(), 1) : unsetenv(name); }
    RuntimeDirectory(const RuntimeDirectory&) = delete;
    RuntimeDirectory& operator=(const RuntimeDirectory&) = delete;

private:
    static constexpr auto name = "XDG_RUNTIME_DIR";
    std::optional<std::string> before;
};

TEST_F(Live, AClientWithoutARuntimeDirectoryIsAskedByAProgramThatHasOne) {
    std::optional<RuntimeDirectory> runtime(std::in_place, "");
    RunningProgram client(profile, {"serve"});
    client.receive();
    runtime.reset();
    runtime.emplace(profile.root().string());
    const auto outcome = profile.run({"--live", "get", "Theme"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_THAT(outcome.error, HasSubstr("running client, process " + std::to_string(client.getProcess())));
}

TEST_F(Live, AClientThatCannotBeFoundIsMentioned) {
    const auto first = profile.root() / "first";
    std::filesystem::create_directory(first);
    std::optional<RuntimeDirectory> runtime(std::in_place, first.string());
    RunningProgram client(profile, {"serve"});
    client.receive();
    runtime.reset();
    runtime.emplace((profile.root() / "second").string());
    const auto outcome = profile.run({"get", "Theme"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_EQ(outcome.out, "system\n");
    EXPECT_THAT(outcome.error, AllOf(HasSubstr("in use by process " + std::to_string(client.getProcess())),
                                     HasSubstr("its files are read")));
    EXPECT_EQ(profile.run({"--offline", "get", "Theme"}).error, "");
}

TEST_F(Live, ServeRefusesChangesOnRequest) {
    RunningProgram client(profile, {"serve", "--no-changes"});
    client.receive();
    EXPECT_EQ(ask({{"verb", "set"}, {"key", "Theme"}, {"value", "dark"}}).at("exitCode"), 1);
}

TEST_F(Live, AKilledClientLeavesASocketThatTheNextOneReplaces) {
    {
        RunningProgram client(profile, {"serve"});
        client.receive();
    } // killed
    EXPECT_TRUE(std::filesystem::exists(socketPath()));
    RunningProgram client(profile, {"serve"});
    client.receive();
    EXPECT_EQ(ask({{"verb", "hello"}}).at("type"), "hello");
}

TEST_F(Live, ASecondClientIsRefusedAndDoesNotDisturbTheFirst) {
    RunningProgram client(profile, {"serve"});
    client.receive();
    const auto second = profile.run({"serve"});
    EXPECT_EQ(second.exitCode, 3);
    EXPECT_THAT(second.error, HasSubstr("in use by process"));
    EXPECT_EQ(ask({{"verb", "hello"}}).at("type"), "hello");
}

TEST_F(Live, WatchPrintsChangesAndEndsWithTheClient) {
    RunningProgram client(profile, {"serve"});
    client.receive();
    RunningProgram watch(profile, {"watch", "Them*"});
    EXPECT_THAT(watch.receiveMessage(), HasSubstr("watching process " + std::to_string(client.getProcess())));
    set("Volume", "1");
    set("Theme", "dark");
    const auto event = watch.receive();
    EXPECT_EQ(event.at("property"), "Value");
    EXPECT_EQ(event.at("old"), "system");
    EXPECT_EQ(event.at("new"), "dark");
    EXPECT_EQ(event.at("store"), "LocalFileConfigStore");
    client.signal(SIGTERM);
    EXPECT_EQ(client.waitForEnd(), 0);
    EXPECT_EQ(watch.waitForEnd(), 0);
}

TEST_F(Live, WatchEndsWithSuccessOnASignal) {
    RunningProgram client(profile, {"serve"});
    client.receive();
    RunningProgram watch(profile, {"watch"});
    watch.receiveMessage();
    watch.signal(SIGINT);
    EXPECT_EQ(watch.waitForEnd(), 0);
}

TEST_F(Live, WatchWithoutAClientFailsAndLeavesTheProfileUntouched) {
    const auto outcome = profile.run({"watch"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.error, HasSubstr("--follow waits for one"));
    EXPECT_FALSE(std::filesystem::exists(profile.root() / "config"));
    EXPECT_FALSE(std::filesystem::exists(profile.root() / "state"));
}

TEST_F(Live, WatchOfflineIsAWrongUse) {
    RunningProgram client(profile, {"serve"});
    client.receive();
    for (const Arguments& command : {Arguments{"--offline", "watch"}, {"--offline", "watch", "--follow"}}) {
        RunningProgram watch(profile, command);
        EXPECT_THAT(watch.receiveMessage(), HasSubstr("--offline excludes 'watch'"));
        EXPECT_EQ(watch.waitForEnd(), 2);
    }
}

TEST_F(Live, WatchFollowsAClientThatIsKilledAndStartedAgain) {
    RunningProgram watch(profile, {"watch", "--follow", "Theme"});
    for (const auto* value : {"dark", "light"}) {
        RunningProgram client(profile, {"serve"});
        client.receive();
        EXPECT_THAT(watch.receiveMessage(), HasSubstr("watching process"));
        set("Theme", value);
        EXPECT_EQ(watch.receiveUntil("property", "Value").at("new"), value);
        client.signal(SIGKILL);
        client.waitForEnd();
        EXPECT_THAT(watch.receiveMessage(), HasSubstr("has ended"));
    }
    watch.signal(SIGTERM);
    EXPECT_EQ(watch.waitForEnd(), 0);
}

TEST_F(Live, AStoppedOrKilledWatcherDoesNotAffectOthers) {
    constexpr int changes = 1200;
    const std::string filler(2000, 'x'); // the buffers of the socket hold few such events
    RunningProgram client(profile, {"serve"});
    client.receive();
    RunningProgram attentive(profile, {"watch", "AllowUrlProvisioning", "Theme"});
    RunningProgram stopped(profile, {"watch", "Theme"});
    RunningProgram killed(profile, {"watch"});
    for (auto* watch : {&attentive, &stopped, &killed}) {
        watch->receiveMessage();
    }
    stopped.signal(SIGSTOP);
    KyrCoreUtils::LocalConnection changer(socketPath());
    std::string line;
    for (int i = 0; i < changes; ++i) {
        const nlohmann::json request{{"verb", "set"}, {"key", "Theme"}, {"value", filler + std::to_string(i)}};
        ASSERT_TRUE(changer.sendLine(request.dump(), 20s));
        ASSERT_EQ(changer.receiveLine(line, 20s), KyrCoreUtils::LocalConnection::Received::Line);
        EXPECT_EQ(attentive.receiveUntil("property", "Value").at("new"), filler + std::to_string(i));
        if (i == changes / 2) {
            killed.signal(SIGKILL);
        }
    }
    stopped.signal(SIGCONT);
    set("Theme", "end");
    // It receives what was queued, then how much it missed, then what comes later.
    auto last = nlohmann::json::object();
    std::size_t received = 0;
    while (last.value("new", "") != "end") {
        last = stopped.receive();
        received += last.at("type") == "lost" ? last.at("count").get<std::size_t>() : 1;
        if (last.at("type") == "lost") {
            set("Theme", "end2");
            set("Theme", "end");
        }
    }
    EXPECT_GE(received, static_cast<std::size_t>(changes));
}

/// Thousands of defaults, and as many keys in a document.
TEST_F(Live, AWatcherOfThousandsOfKeysReceivesEachChange) {
    constexpr int keys = 5000;
    std::string defaults = "<Lumora>\n";
    std::string elements;
    for (int i = 0; i < keys; ++i) {
        const auto number = std::to_string(i);
        defaults += "<userConfig name=\"Key" + number + "\" value=\"default\"/>\n";
        elements += "<Key" + number + ">document</Key" + number + ">\n";
    }
    profile.write("resources/lumora-config-defaults.xml", defaults + "</Lumora>\n");
    const auto document = profile.writeDocument("managed.xml", elements);
    RunningProgram client(profile, {"serve"});
    client.receive();
    RunningProgram all(profile, {"watch"});
    RunningProgram last(profile, {"watch", "Key4999"});
    for (auto* watch : {&all, &last}) {
        watch->receiveMessage();
    }
    // The events are read while the change is made, so that none of them is lost.
    const auto expectEvent = [&](const std::string& value, const std::string& store,
                                 const std::function<void()>& change) {
        std::vector<std::future<void>> readers;
        for (auto* watch : {&all, &last}) {
            readers.push_back(std::async(std::launch::async, [watch, &value, &store] {
                nlohmann::json event;
                do {
                    event = watch->receiveUntil("property", "Value");
                } while (!KyrCoreUtils::caseInsensitiveStringEquals(event.at("key").get<std::string>(),
                                                                    std::string("Key4999")));
                EXPECT_EQ(event.at("new"), value);
                EXPECT_EQ(event.at("store"), store);
            }));
        }
        change();
        for (auto& reader : readers) {
            reader.get();
        }
    };
    expectEvent("user", "LocalFileConfigStore", [&] { set("Key4999", "user"); });
    expectEvent("default", "lumora-config-defaults.xml", [&] {
        EXPECT_EQ(profile.run({"reset", "Key4999"}).exitCode, 0);
    });
    expectEvent("document", "MdmConfigStore", [&] { EXPECT_EQ(profile.run({"mdm", document}).exitCode, 0); });
    profile.writePolicy("Key4999", "policy");
    expectEvent("policy", "RegistryConfigStore", [&] { EXPECT_EQ(profile.run({"refresh"}).exitCode, 0); });
}

} // namespace
} // namespace program_test
