#include "TestHost.h"

#include <kyr/StringUtils.h>

#include <gmock/gmock.h>

#include <atomic>
#include <set>

namespace inspection_test {
namespace {

using testing::ElementsAre;
using testing::UnorderedElementsAre;

struct InspectionWatch : testing::Test {
    TestHost host{{}, {{L"Theme", L"system"}, {L"Volume", L"5"}}};
    Peer peer{host};
};

TEST_F(InspectionWatch, AChangeIsReportedWithOldAndNewValueTimeAndStore) {
    ASSERT_EQ(peer.ask({{"id", 1}, {"verb", "watch"}})["id"], 1);
    host.set(L"Theme", L"dark");
    auto event = peer.receive();
    EXPECT_EQ(event["type"], "notification");
    EXPECT_EQ(event["key"], "theme");
    EXPECT_EQ(event["property"], "Value");
    EXPECT_EQ(event["old"], "system");
    EXPECT_EQ(event["new"], "dark");
    EXPECT_EQ(event["store"], "LocalFileConfigStore");
    EXPECT_THAT(event["time"].get<std::string>(),
                testing::MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}[.][0-9]{3}Z"));
    EXPECT_EQ(peer.receive()["property"], "isOverridden");
    auto store = peer.receive();
    EXPECT_EQ(store["property"], "ValueStoreName");
    EXPECT_EQ(store["old"], "lumora-config-defaults.xml");
}

TEST_F(InspectionWatch, OnlyTheWatchedKeysAreReported) {
    ASSERT_EQ(peer.ask({{"verb", "watch"}, {"keys", {"vol*", "Other"}}})["type"], "done");
    host.set(L"Theme", L"dark");
    host.set(L"Volume", L"6");
    EXPECT_EQ(peer.receive()["key"], "volume");
}

TEST_F(InspectionWatch, AKeyCanBeWatchedByItsOldName) {
    ASSERT_EQ(peer.ask({{"verb", "watch"}, {"keys", {"tftpserver1"}}})["type"], "done");
    host.set(L"TFTPPrimaryServer", L"a.example");
    EXPECT_EQ(peer.receive()["key"], "TFTPPrimaryServer");
}

TEST_F(InspectionWatch, WatchingAnUnknownKeyReportsItsChangesAndCreatesNoRecord) {
    const auto before = host.countRecords();
    ASSERT_EQ(peer.ask({{"verb", "watch"}, {"keys", {"Unknown"}}})["type"], "done");
    EXPECT_EQ(host.countRecords(), before);
    host.set(L"Unknown", L"1");
    EXPECT_EQ(peer.receive()["new"], "1");
}

TEST_F(InspectionWatch, UnwatchEndsTheReports) {
    ASSERT_EQ(peer.ask({{"verb", "watch"}})["type"], "done");
    ASSERT_EQ(peer.ask({{"verb", "unwatch"}})["type"], "done");
    host.set(L"Theme", L"dark");
    EXPECT_EQ(peer.ask({{"verb", "hello"}})["type"], "hello");
}

TEST_F(InspectionWatch, ValuesOfSensitiveKeysAreMasked) {
    host.onServices([&] { host.service().setKeySensitive(L"Secret"); });
    Peer trusted(host);
    ASSERT_EQ(peer.ask({{"verb", "watch"}})["type"], "done");
    ASSERT_EQ(trusted.ask({{"verb", "watch"}, {"showSecrets", true}})["type"], "done");
    host.set(L"Secret", L"hunter2");
    EXPECT_EQ(peer.receive()["new"], "VALUE_HIDDEN");
    EXPECT_EQ(trusted.receive()["new"], "hunter2");
}

TEST_F(InspectionWatch, AWatcherMayChangeTheConfigurationItself) {
    ASSERT_EQ(peer.ask({{"verb", "watch"}, {"keys", {"Theme"}}})["type"], "done");
    peer.sendText("{\"id\":2,\"verb\":\"set\",\"key\":\"Theme\",\"value\":\"dark\"}");
    std::vector<std::string> kinds;
    for (int i = 0; i < 4; ++i) {
        kinds.push_back(peer.receive()["type"]);
    }
    EXPECT_THAT(kinds, UnorderedElementsAre("notification", "notification", "notification", "done"));
}

TEST(InspectionWatchers, ASlowWatcherGetsOneEventWithTheNumberOfMissedChanges) {
    constexpr std::size_t changes = 20000;
    inspection::InspectionLimits limits;
    limits.queuedEvents = 10;
    limits.queuedChanges = changes;
    limits.catchUpTime = std::chrono::milliseconds::zero();
    TestHost host(limits);
    const auto setKey = [&](const std::wstring& value) { host.featureSet().setInMemoryConfig(L"Key", value); };
    host.onServices([&] { setKey(L"begin"); });
    Peer slow(host);
    ASSERT_EQ(slow.ask({{"verb", "watch"}, {"keys", {"Key"}}})["type"], "done");
    host.onServices([&] {
        for (std::size_t i = 0; i < changes; ++i) {
            setKey(std::to_wstring(i));
        }
    });
    std::size_t received = 0;
    std::size_t gaps = 0;
    bool behindGap = false;
    while (received < changes) {
        auto event = slow.receive();
        const bool isGap = event["type"] == "lost";
        EXPECT_FALSE(isGap && behindGap) << "one event for each series of missed changes";
        gaps += isGap ? 1 : 0;
        received += isGap ? event["count"].get<std::size_t>() : 1;
        behindGap = isGap;
    }
    EXPECT_EQ(received, changes);
    EXPECT_GE(gaps, 1U);
    host.onServices([&] { setKey(L"end"); });
    EXPECT_EQ(slow.receive()["new"], "end") << "it receives later events";
}

/// Sets many keys in one task, so that their changes arrive at once.
void setManyKeys(const TestHost& host, int keys, const std::wstring& value) {
    host.onServices([&] {
        for (int i = 0; i < keys; ++i) {
            host.featureSet().setInMemoryConfig(L"Key" + std::to_wstring(i), value);
        }
    });
}

/// Reads until `keys` values have arrived. Expects that nothing is lost.
void expectValues(Peer& peer, int keys, const std::string& value) {
    std::set<std::string> seen;
    while (seen.size() < static_cast<std::size_t>(keys)) {
        auto event = peer.receive();
        ASSERT_EQ(event["type"], "notification") << event;
        if (event["property"] == "Value") {
            EXPECT_EQ(event["new"], value);
            seen.insert(event["key"]);
        }
    }
}

TEST(InspectionWatchers, AWatcherThatReadsReceivesTenThousandChangesMadeAtOnce) {
    constexpr int keys = 10000;
    TestHost host;
    Peer peer(host);
    ASSERT_EQ(peer.ask({{"verb", "watch"}, {"keys", {"Key*"}}})["type"], "done");
    for (const auto* value : {"first", "second"}) {
        setManyKeys(host, keys, KyrCoreUtils::toWideString(value));
        expectValues(peer, keys, value);
    }
}

TEST(InspectionWatchers, AWatcherThatDoesNotReadLosesChangesAndTheOthersLoseNone) {
    constexpr int keys = 5000;
    inspection::InspectionLimits limits;
    limits.catchUpTime = std::chrono::milliseconds(50);
    TestHost host(limits);
    Peer silent(host);
    ASSERT_EQ(silent.ask({{"verb", "watch"}, {"keys", {"Key*"}}})["type"], "done");
    setManyKeys(host, keys, L"value");
    Peer marker(host);
    ASSERT_EQ(marker.ask({{"verb", "watch"}, {"keys", {"Marker"}}})["type"], "done");
    host.onServices([&] { host.featureSet().setInMemoryConfig(L"Marker", L"1"); });
    EXPECT_EQ(marker.receive()["key"], "Marker") << "the feed waits for the silent one no longer";
    Json event;
    int received = 0;
    while ((event = silent.receive())["type"] == "notification") {
        ++received;
    }
    EXPECT_EQ(event["type"], "lost");
    EXPECT_GT(received, 0);
    EXPECT_GT(event["count"].get<int>(), keys);
    host.onServices([&] { host.featureSet().setInMemoryConfig(L"Key0", L"end"); });
    EXPECT_EQ(silent.receive()["new"], "end");
}

TEST(InspectionWatchers, AWatcherThatReadsReceivesEveryChangeWhileOthersDisconnect) {
    constexpr int changes = 300;
    TestHost host;
    Peer peer(host);
    ASSERT_EQ(peer.ask({{"verb", "watch"}, {"keys", {"Key"}}})["type"], "done");
    std::atomic<bool> done = false;
    std::thread others([&] {
        while (!done) {
            Peer other(host);
            other.ask({{"verb", "watch"}});
        }
    });
    std::thread writer([&] {
        for (int i = 0; i < changes; ++i) {
            host.onServices([&] { host.featureSet().setInMemoryConfig(L"Key", std::to_wstring(i)); });
        }
    });
    int expected = 0;
    while (expected < changes) {
        auto event = peer.receive();
        ASSERT_EQ(event["type"], "notification");
        if (event["property"] == "Value") {
            EXPECT_EQ(event["new"], std::to_string(expected++));
        }
    }
    writer.join();
    done = true;
    others.join();
}

} // namespace
} // namespace inspection_test
