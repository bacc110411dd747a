#include "ServiceFixture.h"

#include <ConfigRecords.h>
#include <LogRecorder.h>

#include <stdexcept>
#include <vector>

namespace ZelUnified {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct RecordedChange {
    std::wstring key;
    ConfigRecordState before;
    ConfigRecordState after;
};

class ChangeRecorder final : public ConfigRecordObserver {
public:
    void OnRecordChanged(const std::wstring& key, const ConfigRecordState& before,
                         const ConfigRecordState& after) override {
        changes.push_back({key, before, after});
    }

    std::vector<RecordedChange> changes;
};

class ThrowingObserver final : public ConfigRecordObserver {
public:
    void OnRecordChanged(const std::wstring&, const ConfigRecordState&, const ConfigRecordState&) override {
        throw std::runtime_error("no");
    }
};

/// Tests reading and observing all records without creating one.
struct RecordObserversTest : configservice_test::ServiceFixture {
    std::shared_ptr<ChangeRecorder> record() {
        auto recorder = std::make_shared<ChangeRecorder>();
        service->addRecordObserver(recorder);
        return recorder;
    }

    std::vector<std::wstring> keysBehind(const std::wstring& key, std::size_t count) {
        std::vector<std::wstring> keys;
        for (const auto& found : service->getRecordsAfter(key, count)) {
            keys.push_back(found->getKey());
        }
        return keys;
    }
};

TEST_F(RecordObserversTest, FindRecordCreatesNoRecord) {
    EXPECT_FALSE(service->findRecord(L"Unknown"));
    EXPECT_FALSE(service->findRecord(L"CalendarIntegrationType"));
    EXPECT_THAT(*service->getAllConfig(), IsEmpty());
    announce(L"Known", L"v");
    ASSERT_TRUE(service->findRecord(L"known"));
    EXPECT_EQ(service->findRecord(L"known")->getValue(), L"v");
}

TEST_F(RecordObserversTest, AnOldNameFindsTheRecordOfTheNewName) {
    service->setupConfigKeyAliases({{L"Old", L"New"}});
    EXPECT_FALSE(service->findRecord(L"Old"));
    announce(L"New", L"v");
    ASSERT_TRUE(service->findRecord(L"old"));
    EXPECT_EQ(service->findRecord(L"old")->getKey(), L"New");
}

TEST_F(RecordObserversTest, RecordsAreListedInSlices) {
    for (const auto* key : {L"c", L"A", L"b"}) {
        announce(key, L"v");
    }
    EXPECT_THAT(keysBehind(L"", 2), ElementsAre(L"A", L"b"));
    EXPECT_THAT(keysBehind(L"B", 2), ElementsAre(L"c"));
    EXPECT_THAT(keysBehind(L"c", 2), IsEmpty());
    EXPECT_THAT(keysBehind(L"aa", 1), ElementsAre(L"b")) << "the key after which a slice begins may have been removed";
}

TEST_F(RecordObserversTest, ASliceContainsRecordsCreatedSinceTheLastOneAndNoneOfBeforeAReset) {
    announce(L"b", L"v");
    announce(L"d", L"v");
    EXPECT_THAT(keysBehind(L"", 9), ElementsAre(L"b", L"d"));
    for (const auto* key : {L"e", L"C", L"a"}) {
        announce(key, L"v");
    }
    EXPECT_THAT(keysBehind(L"", 9), ElementsAre(L"a", L"b", L"C", L"d", L"e"));
    service->reset();
    EXPECT_THAT(keysBehind(L"", 9), IsEmpty());
    announce(L"f", L"v");
    EXPECT_THAT(keysBehind(L"", 9), ElementsAre(L"f"));
}

TEST_F(RecordObserversTest, ObserversAreAddedAndRemovedOnTheServicesThreadOnly) {
    const auto recorder = record();
    factory->servicesDispatcher->disown();
    EXPECT_THROW(record(), UpdateAccessError);
    EXPECT_THROW(service->removeRecordObserver(recorder), UpdateAccessError);
}

TEST_F(RecordObserversTest, TheFirstChangeOfAKeyIsReportedWithAnEmptyStateBefore) {
    const auto recorder = record();
    service->OnConfigChanged(L"k", L"v", L"ov", true, true, L"vs", L"ovs", false);
    ASSERT_EQ(recorder->changes.size(), 1U);
    EXPECT_EQ(recorder->changes[0].key, L"k");
    EXPECT_EQ(recorder->changes[0].before, ConfigRecordState());
    EXPECT_EQ(recorder->changes[0].after, (ConfigRecordState{L"v", L"ov", true, true, L"vs", L"ovs"}));
}

TEST_F(RecordObserversTest, AnEqualNotificationIsNotReported) {
    announce(L"k", L"v");
    const auto recorder = record();
    announce(L"k", L"v");
    announce(L"k", L"V");
    EXPECT_THAT(recorder->changes, IsEmpty());
}

TEST_F(RecordObserversTest, ADeferredChangeIsReportedOnceAndItsFiringIsNot) {
    const auto recorder = record();
    announce(L"k", L"v", true);
    EXPECT_EQ(recorder->changes.size(), 1U);
    service->FireIfRequired(L"k");
    EXPECT_EQ(recorder->changes.size(), 1U);
}

TEST_F(RecordObserversTest, ObserversOfTheRecordAreStillCalledOnce) {
    const auto recorder = record();
    const auto observer = observe(L"k");
    service->OnConfigChanged(L"k", L"v", L"", false, true, L"vs", L"", false);
    EXPECT_THAT(observer->received, ElementsAre("Value", "isDefined", "ValueStoreName"));
}

TEST_F(RecordObserversTest, AnExceptionOfAnObserverOfTheRecordReachesTheCaller) {
    const auto recorder = record();
    const auto observer = observe(L"k");
    observer->reaction = [](const std::string&) { throw std::runtime_error("no"); };
    EXPECT_THROW(announce(L"k", L"v"), std::runtime_error);
    EXPECT_EQ(recorder->changes.size(), 1U);
}

TEST_F(RecordObserversTest, AnObserverThatThrowsDoesNotAffectOtherObservers) {
    const auto throwing = std::make_shared<ThrowingObserver>();
    service->addRecordObserver(throwing);
    const auto recorder = record();
    const auto observer = observe(L"k");
    const testing_host::LogRecorder log;
    announce(L"k", L"v");
    EXPECT_EQ(recorder->changes.size(), 1U);
    EXPECT_EQ(observer->received.size(), 3U);
    EXPECT_THAT(log.getTexts("ConfigService-RecordObservers"), ElementsAre("An observer failed: no"));
}

TEST_F(RecordObserversTest, ARemovedObserverIsNotCalled) {
    const auto recorder = record();
    service->removeRecordObserver(recorder);
    announce(L"k", L"v");
    EXPECT_THAT(recorder->changes, IsEmpty());
}

} // namespace
} // namespace ZelUnified
