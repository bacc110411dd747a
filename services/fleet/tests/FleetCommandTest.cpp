#include "EtcdCluster.h"
#include "InterruptibleProgram.h"
#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <utility>

namespace fleet_test {
namespace {

class FleetCommand : public testing::Test {
protected:
    void SetUp() override {
        if (const auto reason = EtcdCluster::whyUnavailable(); !reason.empty()) {
            GTEST_SKIP() << reason;
        }
    }

    /// Runs "lumora-config fleet" on the cluster.
    static ProgramResult run(const EtcdCluster& cluster, std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "fleet");
        arguments.insert(arguments.end(), {"--plain-http", "--endpoint", cluster.getAccess().endpoints.front()});
        return runProgram(PROGRAM, arguments);
    }
};

TEST_F(FleetCommand, SetsShowsAndRemovesAKeyOfEachAudience) {
    const EtcdCluster cluster;
    EXPECT_EQ(run(cluster, {"set", "Theme", "dark"}).code, 0);
    EXPECT_EQ(run(cluster, {"set", "theme", "light", "--group", "nurses"}).code, 0);
    EXPECT_EQ(run(cluster, {"set", "Theme", "blue", "--user", "ada"}).code, 0);
    EXPECT_EQ(run(cluster, {"get", "THEME"}).output, "dark\n");
    EXPECT_EQ(run(cluster, {"get", "Theme", "--group", "nurses"}).output, "light\n");
    const auto list = run(cluster, {"list", "--group", "nurses", "--user", "ada"});
    EXPECT_EQ(list.code, 0);
    for (const auto* text : {"all", "groups/nurses", "users/ada", "dark", "light", "blue"}) {
        EXPECT_NE(list.output.find(text), std::string::npos) << text;
    }
    EXPECT_EQ(run(cluster, {"set", "THEME", "grey"}).code, 0);
    EXPECT_EQ(cluster.control({"get", "--print-value-only", "/lumora/fleet/all/Theme"}), "grey\n")
        << "an existing key keeps its spelling";
    EXPECT_EQ(run(cluster, {"unset", "Theme", "--user", "ada"}).code, 0);
    EXPECT_EQ(run(cluster, {"unset", "Theme", "--user", "ada"}).code, 1);
    EXPECT_EQ(run(cluster, {"get", "Theme", "--user", "ada"}).code, 1);
}

TEST_F(FleetCommand, OfTwoSpellingsItUsesTheOneThatClientsUse) {
    const EtcdCluster cluster;
    cluster.control({"put", "/lumora/fleet/all/Theme", "first"});
    cluster.control({"put", "/lumora/fleet/all/theme", "last"});
    EXPECT_EQ(run(cluster, {"get", "Theme"}).output, "last\n");
    EXPECT_EQ(run(cluster, {"set", "Theme", "new"}).code, 0);
    EXPECT_EQ(cluster.control({"get", "--print-value-only", "/lumora/fleet/all/theme"}), "new\n");
    EXPECT_EQ(run(cluster, {"unset", "Theme"}).code, 0);
    EXPECT_EQ(run(cluster, {"get", "Theme"}).output, "new\n") << "unset removes the exact spelling if it exists";
    EXPECT_EQ(run(cluster, {"unset", "Theme"}).code, 0);
    EXPECT_EQ(run(cluster, {"get", "Theme"}).code, 1);
}

TEST_F(FleetCommand, HidesSensitiveValuesUnlessSecretsAreShown) {
    const EtcdCluster cluster;
    for (const auto* key : {"FleetConnectionPassword", "FleetConnectionUsername", "BDIConnectionPassword"}) {
        cluster.control({"put", std::string("/lumora/fleet/all/") + key, "secret-5dc1"});
        EXPECT_EQ(run(cluster, {"get", key}).output, "VALUE_HIDDEN\n") << key;
        EXPECT_EQ(run(cluster, {"get", key, "--show-secrets"}).output, "secret-5dc1\n") << key;
    }
    EXPECT_EQ(run(cluster, {"list"}).output.find("secret-5dc1"), std::string::npos);
    EXPECT_NE(run(cluster, {"list", "--show-secrets"}).output.find("secret-5dc1"), std::string::npos);
}

TEST_F(FleetCommand, RefusesWhatNoClientWouldUse) {
    const EtcdCluster cluster;
    EXPECT_EQ(run(cluster, {"set", "two words", "1"}).code, 3);
    EXPECT_EQ(run(cluster, {"set", "FleetEndpoints", "https://elsewhere.example"}).code, 3);
    EXPECT_EQ(run(cluster, {"set", "Theme"}).code, 2);
    EXPECT_EQ(run(cluster, {"list", "Theme"}).code, 2);
    EXPECT_EQ(run(cluster, {"dance"}).code, 2);
    EXPECT_EQ(run(cluster, {"list", "--user", "a/b"}).code, 3);
    EXPECT_EQ(run(cluster, {"list"}).code, 1);
}

TEST_F(FleetCommand, RefusesPlainHttpUnlessItIsAllowed) {
    EXPECT_EQ(runProgram(PROGRAM, {"fleet", "list"}).code, 2);
    const auto result = runProgram(PROGRAM, {"fleet", "list", "--endpoint", "http://127.0.0.1:1"});
    EXPECT_EQ(result.code, 2);
    EXPECT_NE(result.output.find("--plain-http"), std::string::npos) << result.output;
}

/// "lumora-config fleet watch" for the user "ada".
class RunningWatch : public InterruptibleProgram {
public:
    explicit RunningWatch(const EtcdCluster& cluster, std::vector<std::string> options = {})
        : InterruptibleProgram(PROGRAM, makeArguments(cluster, std::move(options))) {}

private:
    static std::vector<std::string> makeArguments(const EtcdCluster& cluster, std::vector<std::string> options) {
        options.insert(options.end(), {"fleet", "watch", "--user", "ada", "--plain-http", "--endpoint",
                                       cluster.getAccess().endpoints.front()});
        return options;
    }
};

std::size_t count(const std::string& text, const std::string& part) {
    std::size_t found = 0;
    for (auto position = text.find(part); position != std::string::npos; position = text.find(part, position + 1)) {
        ++found;
    }
    return found;
}

TEST_F(FleetCommand, WatchPrintsEachChangeUntilASignalArrives) {
    EtcdCluster cluster;
    RunningWatch watch(cluster);
    EXPECT_TRUE(watch.readUntil("watching a client with 0 settings"));
    cluster.put("/lumora/fleet/users/ada/Theme", "dark");
    EXPECT_TRUE(watch.readUntil("Theme: (none) -> \"dark\"\n")) << watch.getOutput();
    cluster.remove("/lumora/fleet/users/ada/Theme");
    EXPECT_TRUE(watch.readUntil("Theme: \"dark\" -> (none)\n")) << watch.getOutput();
    cluster.put("/lumora/fleet/users/ada/BDIConnectionPassword", "secret-1");
    EXPECT_TRUE(watch.readUntil("BDIConnectionPassword: (none) -> VALUE_HIDDEN\n")) << watch.getOutput();
    cluster.put("/lumora/fleet/users/ada/BDIConnectionPassword", "secret-2");
    EXPECT_TRUE(watch.readUntil("BDIConnectionPassword: VALUE_HIDDEN -> VALUE_HIDDEN\n")) << watch.getOutput();
    EXPECT_EQ(watch.interrupt(), 0);
}

TEST_F(FleetCommand, WatchEndsIfTheClusterCannotBeRead) {
    const auto unreachable = runProgram(PROGRAM, {"fleet", "watch", "--endpoint", "https://127.0.0.1:1"});
    EXPECT_EQ(unreachable.code, 3);
    EXPECT_NE(unreachable.output.find("lumora-config: "), std::string::npos) << unreachable.output;
    const EtcdCluster cluster({.authentication = true});
    const auto withoutUser = run(cluster, {"watch"});
    EXPECT_EQ(withoutUser.code, 3);
    EXPECT_NE(withoutUser.output.find("user name is empty"), std::string::npos) << withoutUser.output;
}

TEST_F(FleetCommand, WatchPrintsSkippedKeysAndFailuresOfTheCluster) {
    EtcdCluster cluster;
    RunningWatch watch(cluster);
    EXPECT_TRUE(watch.readUntil("watching a client with 0 settings"));
    cluster.put("/lumora/fleet/all/two words", "1");
    EXPECT_TRUE(watch.readUntil("is skipped")) << watch.getOutput();
    cluster.kill(0);
    EXPECT_TRUE(watch.readUntil("The cluster cannot be followed")) << watch.getOutput();
    cluster.restart(0);
    EXPECT_TRUE(watch.readUntil("The cluster can be followed again")) << watch.getOutput();
    EXPECT_EQ(watch.interrupt(), 0);
}

TEST_F(FleetCommand, VerboseWatchPrintsEachLogLineOnce) {
    EtcdCluster cluster;
    RunningWatch watch(cluster, {"--verbose"});
    EXPECT_TRUE(watch.readUntil("watching a client with 0 settings"));
    cluster.put("/lumora/fleet/all/two words", "1");
    cluster.put("/lumora/fleet/all/Theme", "dark");
    EXPECT_TRUE(watch.readUntil("Theme: (none) -> \"dark\"\n")) << watch.getOutput();
    EXPECT_EQ(count(watch.getOutput(), "is skipped"), 1U) << watch.getOutput();
    EXPECT_EQ(watch.interrupt(), 0);
}

TEST_F(FleetCommand, WorksOnAClusterThatHoldsTooMuchToBeRead) {
    EtcdCluster cluster;
    constexpr std::size_t keys = 50; // 67 MiB in the messages of the gateway
    for (std::size_t key = 0; key < keys; ++key) {
        cluster.put("/lumora/fleet/all/Key" + std::to_string(key), std::string(std::size_t{1} << 20U, 'x'));
    }
    EXPECT_EQ(run(cluster, {"list"}).code, 3);
    EXPECT_EQ(run(cluster, {"set", "KEY1", "small"}).code, 0);
    EXPECT_EQ(run(cluster, {"get", "key1"}).output, "small\n");
    EXPECT_EQ(run(cluster, {"unset", "key0"}).code, 0);
    EXPECT_EQ(cluster.control({"get", "/lumora/fleet/all/Key0"}), "");
    RunningWatch watch(cluster);
    EXPECT_TRUE(watch.readUntil("it holds more than 10,000 keys or 16 MiB")) << watch.getOutput();
    EXPECT_EQ(watch.interrupt(), 0);
}

} // namespace
} // namespace fleet_test
