#include "FollowedCluster.h"
#include "ScriptedMember.h"

#include <LogRecorder.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <utility>

namespace fleet_test {
namespace {

constexpr auto all = "/lumora/fleet/all/";

class FleetWatch : public testing::Test {
protected:
    void SetUp() override {
        if (const auto reason = EtcdCluster::whyUnavailable(); !reason.empty()) {
            GTEST_SKIP() << reason;
        }
    }
};

using ZelUnified::ConfigMap;

TEST_F(FleetWatch, PassesTheMostSpecificValueOfEachKey) {
    EtcdCluster cluster;
    cluster.put("/lumora/fleet/all/Theme", "light");
    cluster.put("/lumora/fleet/all/Volume", "3");
    cluster.put("/lumora/fleet/groups/nurses/Theme", "dark");
    cluster.put("/lumora/fleet/groups/nurses/Tone", "soft");
    cluster.put("/lumora/fleet/users/ada/Tone", "");
    cluster.put("/lumora/fleet/users/bob/Volume", "9");
    cluster.put("/lumora/fleet/groups/doctors/Volume", "8");
    Client client(cluster.getAccess());
    const ConfigMap expected{{L"Theme", L"dark"}, {L"Tone", L""}, {L"Volume", L"3"}};
    EXPECT_TRUE(client.observer.waitFor([&](const auto& settings) { return settings == expected; }));
}

TEST_F(FleetWatch, PassesEachChange) {
    EtcdCluster cluster;
    Client client(cluster.getAccess());
    EXPECT_TRUE(client.observer.waitFor([](const auto& settings) { return settings.empty(); }));
    cluster.put("/lumora/fleet/all/Theme", "light");
    EXPECT_TRUE(client.observer.waitForValue(L"Theme", L"light"));
    cluster.put("/lumora/fleet/users/ada/Theme", "dark");
    EXPECT_TRUE(client.observer.waitForValue(L"Theme", L"dark"));
    cluster.remove("/lumora/fleet/users/ada/Theme");
    EXPECT_TRUE(client.observer.waitForValue(L"Theme", L"light"));
    cluster.remove("/lumora/fleet/all/Theme");
    EXPECT_TRUE(client.observer.waitFor([](const auto& settings) { return settings.empty(); }));
}

TEST_F(FleetWatch, ReadsAgainAfterARestartAndACompaction) {
    EtcdCluster cluster;
    cluster.put("/lumora/fleet/all/Theme", "light");
    Client client(cluster.getAccess());
    EXPECT_TRUE(client.observer.waitForValue(L"Theme", L"light"));
    cluster.restart(0);
    cluster.put("/lumora/fleet/all/Theme", "dark");
    cluster.put("/lumora/fleet/all/Theme", "blue");
    cluster.control({"compaction", "4"});
    EXPECT_TRUE(client.observer.waitForValue(L"Theme", L"blue"));
    cluster.put("/lumora/fleet/all/Theme", "green");
    EXPECT_TRUE(client.observer.waitForValue(L"Theme", L"green"));
}

TEST_F(FleetWatch, FollowsAClusterWhoseRevisionsHaveStartedAgain) {
    EtcdCluster cluster;
    for (int change = 0; change < 10; ++change) {
        cluster.put("/lumora/fleet/all/Theme", std::to_string(change));
    }
    Client client(cluster.getAccess());
    EXPECT_TRUE(client.observer.waitForValue(L"Theme", L"9"));
    cluster.replace();
    EXPECT_TRUE(client.observer.waitFor([](const auto& settings) { return settings.empty(); }));
    cluster.put("/lumora/fleet/all/Theme", "new");
    EXPECT_TRUE(client.observer.waitForValue(L"Theme", L"new"));
}

TEST_F(FleetWatch, FollowsAClusterThatWasUnreachable) {
    EtcdCluster cluster;
    const auto access = cluster.getAccess();
    cluster.kill(0);
    const testing_host::LogRecorder log;
    Client client(access);
    cluster.restart(0);
    cluster.put("/lumora/fleet/all/Theme", "light");
    EXPECT_TRUE(client.observer.waitForValue(L"Theme", L"light"));
}

TEST_F(FleetWatch, SkipsInvalidPairsAndLogsThem) {
    EtcdCluster cluster;
    const testing_host::LogRecorder log;
    cluster.put(std::string(all) + "Latin", "caf\xE9");
    cluster.put(std::string(all) + "a/b", "1");
    cluster.put(std::string(all) + "two words", "1");
    cluster.put(std::string(all) + "FleetEndpoints", "https://elsewhere.example:2379");
    cluster.put(std::string(all) + "certificatevalidationenabled", "false");
    cluster.put(std::string(all) + "PrimaryConfigStores", "BootstrapConfigStore:30");
    cluster.put(std::string(all) + "Bell", "\x07");
    cluster.put(std::string(all) + "Theme", "light");
    Client client(cluster.getAccess());
    const ConfigMap expected{{L"Theme", L"light"}};
    EXPECT_TRUE(client.observer.waitFor([&](const auto& settings) { return settings == expected; }));
    for (const auto* line : {"Latin] is skipped: the value is not UTF-8", "a/b] is skipped: the key contains '/'",
                             "two words] is skipped: the key is not an XML name",
                             "FleetEndpoints] is skipped: the key configures the fleet service itself",
                             "certificatevalidationenabled] is skipped: no cluster may change whether certificates are "
                             "validated",
                             "PrimaryConfigStores] is skipped: the client itself writes this record",
                             "Bell] is skipped: the value contains a control character"}) {
        EXPECT_TRUE(log.mentions(line)) << line;
    }
}

TEST_F(FleetWatch, KeepsTheLastSettingsWhileTheClusterExceedsTheLimits) {
    EtcdCluster cluster;
    const testing_host::LogRecorder log;
    cluster.put("/lumora/fleet/all/Theme", "light");
    auto times = shortTimes();
    times.overfullDelay = std::chrono::seconds(1); // each attempt reads all of it
    Client client(cluster.getAccess(), times);
    EXPECT_TRUE(client.observer.waitForValue(L"Theme", L"light"));
    const std::string large(1000000, 'x');
    for (int number = 0; number < 17; ++number) {
        cluster.put("/lumora/fleet/all/Large" + std::to_string(number), large);
    }
    cluster.put("/lumora/fleet/all/Theme", "dark");
    for (int number = 0; number < 17; ++number) {
        cluster.remove("/lumora/fleet/all/Large" + std::to_string(number));
    }
    const ConfigMap expected{{L"Theme", L"dark"}};
    EXPECT_TRUE(client.observer.waitFor([&](const auto& settings) { return settings == expected; }));
    std::size_t lines = 0;
    for (const auto& text : log.getTexts(ZelLogLevel::Warning)) {
        lines += text.find("more than 10,000 keys or 16 MiB") != std::string::npos ? 1U : 0U;
    }
    EXPECT_EQ(lines, 1U);
}

/// A client of a member that answers as the script says, until it has tried so many times. Returns the log's warnings.
std::vector<std::string> follow(std::size_t lastAttempt, ScriptedMember::Script script, fleet::FleetTimes times,
                                std::string username = {}) {
    const testing_host::LogRecorder log;
    const ScriptedMember member(std::move(script));
    ZelUnified::FleetAccess access;
    access.endpoints = {member.getEndpoint()};
    access.plainHttpAllowed = true;
    access.username = std::move(username);
    testing_host::Signal hasTried;
    {
        const fleet::FleetFollower follower(
            makeSettings(access), times, [](const ConfigMap&) {},
            [&hasTried, lastAttempt, attempts = std::size_t{0}]() mutable {
                if (++attempts == lastAttempt) {
                    hasTried.set();
                }
            });
        EXPECT_TRUE(hasTried.wait());
    }
    return log.getTexts(ZelLogLevel::Warning);
}

std::vector<std::string> followTwice(ScriptedMember::Script script, fleet::FleetTimes times,
                                     std::string username = {}) {
    return follow(2, std::move(script), times, std::move(username));
}

TEST(FleetWatchOfAMember, TreatsAnAnswerThatIsTooLongAsOneThatExceedsTheLimits) {
    auto times = shortTimes();
    times.overfullDelay = times.firstDelay;
    const std::string tooLong(fleet::HttpTransfer::bufferLimit + 1, ' ');
    const auto warnings = followTwice(
        [&](const std::string&) {
            return ScriptedMember::Answer{200, tooLong, false};
        },
        times);
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_NE(warnings.front().find("it holds more than 10,000 keys or 16 MiB"), std::string::npos) << warnings.front();
}

TEST(FleetWatchOfAMember, ReportsWhyAWatchIsRefused) {
    // With and without an end of the line.
    for (const auto* body : {R"({"error":"no space left","code":8})", "{\"error\":\"no space left\",\"code\":8}\n"}) {
        const auto warnings = followTwice(
            [&](const std::string& path) {
                return path == fleet::etcd::watchPath
                           ? ScriptedMember::Answer{503, body, false}
                           : ScriptedMember::Answer{200, R"({"header":{"revision":"7"},"responses":[]})", false};
            },
            shortTimes());
        ASSERT_EQ(warnings.size(), 1U);
        EXPECT_NE(warnings.front().find("status 503, no space left"), std::string::npos) << warnings.front();
    }
}

TEST(FleetWatchOfAMember, RenewsTheTokenWithoutAWarningIfAWatchIsRefusedForIt) {
    bool wasRefused = false; // of the member's thread
    const auto warnings = followTwice(
        [&](const std::string& path) {
            if (path == fleet::etcd::authenticatePath) {
                return ScriptedMember::Answer{200, R"({"token":"abc.12"})", false};
            }
            if (path == fleet::etcd::watchPath) {
                return std::exchange(wasRefused, true)
                           ? ScriptedMember::Answer{200, "", true}
                           : ScriptedMember::Answer{401, "{\"error\":\"refused\",\"code\":16}\n", false};
            }
            return ScriptedMember::Answer{200, R"({"header":{"revision":"7"},"responses":[]})", false};
        },
        shortTimes(), "client");
    EXPECT_EQ(warnings, std::vector<std::string>());
}

TEST(FleetWatchOfAMember, AuthenticatesWithoutAWarningIfAuthenticationIsEnabledAfterATokenWasRefused) {
    std::size_t authentications = 0; // only the member's thread uses these two
    std::size_t watches = 0;
    const auto refuse = [](const std::string& reason) {
        return ScriptedMember::Answer{400, R"({"error":")" + reason + R"(","code":3})", false};
    };
    const auto warnings = follow(
        3,
        [&](const std::string& path) {
            if (path == fleet::etcd::authenticatePath) {
                return ++authentications == 2 ? refuse(fleet::etcd::authenticationDisabled)
                                              : ScriptedMember::Answer{200, R"({"token":"abc.12"})", false};
            }
            if (path == fleet::etcd::watchPath) {
                // The third one is held, since another refusal would be reported.
                return ++watches > 2 ? ScriptedMember::Answer{200, "", true}
                                     : refuse(watches == 1 ? "etcdserver: revision of auth store is old"
                                                           : "etcdserver: user name is empty");
            }
            return ScriptedMember::Answer{200, R"({"header":{"revision":"7"},"responses":[]})", false};
        },
        shortTimes(), "client");
    EXPECT_EQ(warnings, std::vector<std::string>());
}

TEST(FleetWatchOfAMember, WaitsAfterASecondRefusalByAMemberThatDoesNotAuthenticate) {
    const auto warnings = follow(
        4,
        [](const std::string& path) {
            return ScriptedMember::Answer{400,
                                          path == fleet::etcd::authenticatePath
                                              ? R"({"error":"etcdserver: authentication is not enabled","code":9})"
                                              : R"({"error":"etcdserver: user name is empty","code":3})",
                                          false};
        },
        shortTimes(), "client");
    ASSERT_EQ(warnings.size(), 1U);
    EXPECT_NE(warnings.front().find("status 400, etcdserver: user name is empty"), std::string::npos);
}

TEST_F(FleetWatch, AuthenticatesWithoutAWarningWhenTheClusterEnablesAuthentication) {
    EtcdCluster cluster({.authentication = true});
    cluster.control({"auth", "disable"});
    const testing_host::LogRecorder log;
    Client client(cluster.getAccess());
    EXPECT_TRUE(client.observer.waitFor([](const auto& settings) { return settings.empty(); }));
    const auto calls = client.observer.countCalls();
    cluster.control({"auth", "enable"});
    EXPECT_TRUE(client.observer.waitForCalls(calls + 1)) << "it reads again";
    cluster.put("/lumora/fleet/users/ada/Theme", "light");
    EXPECT_TRUE(client.observer.waitForValue(L"Theme", L"light"));
    for (const auto& text : log.getTexts(ZelLogLevel::Warning)) {
        EXPECT_EQ(text.find("status 4"), std::string::npos) << "it is no outage: " << text;
        EXPECT_EQ(text.find("ended the watch"), std::string::npos) << "it is no outage: " << text;
    }
}

TEST_F(FleetWatch, ReadsAgainAfterItsListenerHasThrown) {
    EtcdCluster cluster;
    testing_host::Signal calledAgain;
    bool hasThrown = false; // of the follower's thread
    const fleet::FleetFollower follower(makeSettings(cluster.getAccess()), shortTimes(), [&](const ConfigMap&) {
        if (!std::exchange(hasThrown, true)) {
            throw std::runtime_error("no room");
        }
        calledAgain.set();
    });
    EXPECT_TRUE(calledAgain.wait());
}

TEST(FleetHttpThread, GoesOnAfterATaskHasThrown) {
    testing_host::Signal ran;
    fleet::HttpThread thread;
    thread.post([] { throw std::runtime_error("no room"); });
    thread.post([&] { ran.set(); });
    EXPECT_TRUE(ran.wait());
    thread.end();
}

TEST_F(FleetWatch, AuthenticatesAgainAfterTheTokensAreLost) {
    EtcdCluster cluster({.authentication = true});
    const testing_host::LogRecorder log;
    Client client(cluster.getAccess());
    EXPECT_TRUE(client.observer.waitFor([](const auto& settings) { return settings.empty(); }));
    const auto calls = client.observer.countCalls();
    cluster.loseTokens();
    EXPECT_TRUE(client.observer.waitForCalls(calls + 1)) << "it reads again";
    cluster.put("/lumora/fleet/users/ada/Theme", "light");
    EXPECT_TRUE(client.observer.waitForValue(L"Theme", L"light"));
    EXPECT_FALSE(log.mentions(EtcdCluster::password));
    for (const auto& text : log.getTexts(ZelLogLevel::Warning)) {
        EXPECT_EQ(text.find("status 4"), std::string::npos) << "the end of a token is no outage: " << text;
        EXPECT_EQ(text.find("ended the watch"), std::string::npos) << "the end of a token is no outage: " << text;
    }
}

TEST_F(FleetWatch, ReportsAUserWithoutRights) {
    EtcdCluster cluster({.authentication = true});
    auto access = cluster.getAccess();
    cluster.control({"user", "revoke-role", "client", "reader"});
    const testing_host::LogRecorder log;
    auto settings = makeSettings(access);
    testing_host::Signal triedAgain;
    const fleet::FleetFollower follower(
        std::move(settings), shortTimes(), [](const ConfigMap&) {},
        [&triedAgain, attempts = std::size_t{0}]() mutable {
            if (++attempts == 4) {
                triedAgain.set();
            }
        });
    EXPECT_TRUE(triedAgain.wait());
    EXPECT_TRUE(log.mentions("permission denied"));
}

TEST_F(FleetWatch, ShowsItsCertificateToAMemberThatRequiresOne) {
    EtcdCluster cluster({.tls = true, .clientCertificates = true});
    cluster.put("/lumora/fleet/all/Theme", "light");
    Client client(cluster.getAccess());
    EXPECT_TRUE(client.observer.waitForValue(L"Theme", L"light"));
    auto stranger = cluster.getAccess();
    stranger.clientCertificate.clear();
    stranger.clientKey.clear();
    EXPECT_THROW(fleet::EtcdSession(stranger).list({fleet::FleetScope::ofAll()}), fleet::EtcdError);
}

TEST_F(FleetWatch, RefusesAKeyWithAPassphrase) {
    EtcdCluster cluster({.tls = true, .clientCertificates = true});
    auto access = cluster.getAccess();
    access.clientKey = cluster.getLockedClientKey();
    try {
        fleet::EtcdSession(access).list({fleet::FleetScope::ofAll()});
        FAIL() << "the key was used";
    } catch (const fleet::EtcdError& error) {
        EXPECT_STREQ(error.what(), "the client's certificate or its key cannot be used; a key with a passphrase is not "
                                   "supported");
    }
}

TEST_F(FleetWatch, AcceptsOnlyTheConfiguredAuthority) {
    EtcdCluster cluster({.tls = true});
    cluster.put("/lumora/fleet/all/Theme", "light");
    Client client(cluster.getAccess());
    EXPECT_TRUE(client.observer.waitForValue(L"Theme", L"light"));
    auto stranger = cluster.getAccess();
    stranger.authority.clear();
    EXPECT_THROW(fleet::EtcdSession(stranger).list({fleet::FleetScope::ofAll()}), fleet::EtcdError);
}

TEST_F(FleetWatch, EndsWithoutWaitingForASilentMember) {
    EtcdCluster cluster;
    const auto access = cluster.getAccess();
    cluster.suspend(0);
    const auto start = std::chrono::steady_clock::now();
    std::make_unique<Client>(access).reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, fleet::FleetTimes().answer);
    cluster.resume(0);
}

} // namespace
} // namespace fleet_test
