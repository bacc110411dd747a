#include "TestHost.h"

#include <gmock/gmock.h>

#include <atomic>

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

TEST(InspectionWatchers, AReadingWatcherMissesNoChangeWhileOthersDisconnect) {
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
