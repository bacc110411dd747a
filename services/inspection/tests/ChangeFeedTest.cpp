#include "ChangeFeed.h"

#include "TestHost.h"

#include <gmock/gmock.h>

#include <deque>

namespace inspection_test {
namespace {

using inspection::ChangeFeed;
using testing::ElementsAre;

/// Records what it is sent.
class RecordingWatcher final : public inspection::Watcher {
public:
    bool needsTime(std::size_t /*bytes*/, std::size_t /*count*/) override { return isBusy; }
    void sendEvents(const std::shared_ptr<const std::string>& lines, std::size_t count) override {
        texts.push_back(*lines);
        received += count;
    }
    void addLost(std::size_t count) override { losses.push_back(count); }

    std::vector<std::string> texts;
    std::size_t received = 0;
    std::vector<std::size_t> losses;
    bool isBusy = false;
};

/// A feed whose socket's thread runs when the test says so.
struct InspectionChangeFeed : testing::Test {
    InspectionChangeFeed() { limits.queuedChanges = 2; }

    void watch(RecordingWatcher& watcher, const std::vector<std::wstring>& keys) {
        watcher.addPatterns(keys);
        feed->add(watcher, [] {});
        host.onServices([] {});
    }
    void setInMemory(const std::wstring& key, const std::wstring& value) {
        host.onServices([&] { host.featureSet().setInMemoryConfig(key, value); });
    }
    void runSocket() {
        while (!posted.empty()) {
            const auto work = std::move(posted.front());
            posted.pop_front();
            work();
        }
    }

    TestHost host;
    inspection::InspectionLimits limits;
    std::deque<std::function<void()>> posted;
    std::shared_ptr<ChangeFeed> feed;

    void SetUp() override {
        feed = std::make_shared<ChangeFeed>(
            host.getFactory(), std::make_shared<const inspection::ConfigInspector>(host.getFactory()), limits,
            [this](std::function<void()> work) { posted.push_back(std::move(work)); });
        for (const auto* key : {L"Theme", L"Volume", L"Quiet"}) {
            setInMemory(key, L"begin"); // later changes are changes of the value alone
        }
    }
};

TEST_F(InspectionChangeFeed, AWatcherReceivesTheNumberOfItsLostEvents) {
    RecordingWatcher theme;
    RecordingWatcher volume;
    RecordingWatcher quiet;
    RecordingWatcher everything;
    watch(theme, {L"Theme"});
    watch(volume, {L"vol*"});
    watch(quiet, {L"Quiet"});
    watch(everything, {});
    setInMemory(L"Theme", L"1"); // these two fit
    setInMemory(L"Volume", L"1");
    for (const auto* value : {L"2", L"3", L"4"}) {
        setInMemory(L"Theme", value);
    }
    setInMemory(L"Volume", L"2");
    runSocket();
    EXPECT_EQ(theme.received, 1U);
    EXPECT_THAT(theme.losses, ElementsAre(3U));
    EXPECT_EQ(volume.received, 1U);
    EXPECT_THAT(volume.losses, ElementsAre(1U));
    EXPECT_EQ(quiet.received, 0U);
    EXPECT_THAT(quiet.losses, ElementsAre());
    EXPECT_EQ(everything.received, 2U);
    EXPECT_THAT(everything.losses, ElementsAre(4U)) << "one event for each gap";
}

TEST_F(InspectionChangeFeed, ALostChangeCountsAsOneEventForEachProperty) {
    RecordingWatcher watcher;
    watch(watcher, {L"New", L"Other"});
    setInMemory(L"Theme", L"1");
    setInMemory(L"Volume", L"1");
    setInMemory(L"New", L"1"); // does not fit
    runSocket();
    ASSERT_EQ(watcher.losses.size(), 1U);
    EXPECT_EQ(watcher.received, 0U);
    setInMemory(L"Other", L"1");
    runSocket();
    EXPECT_GT(watcher.received, 1U);
    EXPECT_EQ(watcher.losses.front(), watcher.received) << "each new key has the same number of events";
}

TEST_F(InspectionChangeFeed, ABusyWatcherDelaysTheEventsOfAllWatchersUntilItResumesOrDisconnects) {
    RecordingWatcher busy;
    RecordingWatcher other;
    watch(busy, {L"Theme"});
    watch(other, {});
    busy.isBusy = true;
    setInMemory(L"Theme", L"1");
    setInMemory(L"Volume", L"1");
    runSocket();
    EXPECT_EQ(other.received, 0U);
    busy.isBusy = false;
    feed->resume();
    runSocket();
    EXPECT_EQ(busy.received, 1U);
    EXPECT_EQ(other.received, 2U);
    busy.isBusy = true;
    setInMemory(L"Theme", L"2");
    runSocket();
    EXPECT_EQ(other.received, 2U);
    feed->remove(busy);
    runSocket();
    EXPECT_EQ(other.received, 3U);
    EXPECT_THAT(other.losses, ElementsAre());
}

TEST_F(InspectionChangeFeed, ALostEventIsCountedForAWatcherOfTheOldName) {
    RecordingWatcher watcher;
    watch(watcher, {L"TftpServer1"});
    setInMemory(L"TFTPPrimaryServer", L"begin");
    runSocket();
    setInMemory(L"Theme", L"1");
    setInMemory(L"Volume", L"1");
    setInMemory(L"TFTPPrimaryServer", L"1");
    runSocket();
    EXPECT_THAT(watcher.losses, ElementsAre(1U));
}

TEST_F(InspectionChangeFeed, AChangeIsMaskedIfItsKeyWasMarkedBeforeIt) {
    RecordingWatcher watcher;
    watch(watcher, {L"Theme"});
    host.onServices([&] { host.service().setKeySensitive(L"Theme"); });
    setInMemory(L"Theme", L"hunter2");
    runSocket();
    ASSERT_EQ(watcher.texts.size(), 1U);
    EXPECT_THAT(watcher.texts.front(), testing::HasSubstr("VALUE_HIDDEN"));
    EXPECT_THAT(watcher.texts.front(), testing::Not(testing::HasSubstr("hunter2")));
}

} // namespace
} // namespace inspection_test
