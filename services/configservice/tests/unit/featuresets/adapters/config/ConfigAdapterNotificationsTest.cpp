#include "ConfigAdapterFixture.h"
#include "FakeSystemService.h"
#include "base/TestObjects.h"

#include <thread>

namespace ZelUnified {

using configservice_test::RecordingValueObserver;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// The arguments of one change except the last: seven distinct values.
struct Change {
    std::wstring key;
    std::wstring value;
    std::wstring originalValue;
    bool isOverridden;
    bool isDefined;
    std::wstring valueStoreName;
    std::wstring originalValueStoreName;

    bool operator==(const Change&) const = default;
};

std::ostream& operator<<(std::ostream& stream, const Change& change) {
    return stream << KyrCoreUtils::toString(change.key + L": " + change.value + L" | " + change.originalValue) << " | "
                  << change.isOverridden << " | " << change.isDefined << " | "
                  << KyrCoreUtils::toString(change.valueStoreName + L" | " + change.originalValueStoreName);
}

// The two changes distinguish the booleans.
const Change overriddenChange{L"k", L"value one", L"original one", true, false, L"store one", L"origin one"};
const Change definedChange{L"k", L"value two", L"original two", false, true, L"store two", L"origin two"};

} // namespace

class ConfigAdapterNotifications : public ConfigAdapterFixture {
protected:
    void announce(const Change& change, bool deferFire) {
        adapter->onConfigAddedOrUpdated(change.key, change.value, change.originalValue, change.isOverridden,
                                        change.isDefined, change.valueStoreName, change.originalValueStoreName,
                                        deferFire);
    }
    Change readRecord(const std::wstring& key) {
        const auto record = service->getConfig(key);
        return {record->getKey(),
                record->getValue(),
                record->getOriginalValue(),
                record->getisOverridden(),
                record->getisDefined(),
                record->getValueStoreName(),
                record->getOriginalValueStoreName()};
    }
    std::shared_ptr<RecordingValueObserver> observe(const std::wstring& key) {
        auto observer = std::make_shared<RecordingValueObserver>();
        service->getConfig(key)->addObserver(std::weak_ptr<ConfigValueObserver>(observer));
        return observer;
    }
    std::vector<std::string> tasks() const { return factory->servicesDispatcher->getTaskNames(); }
    void elsewhere() { factory->servicesDispatcher->disown(); }
};

TEST_F(ConfigAdapterNotifications, AChangeOnTheServicesThreadIsDeliveredBeforeTheCallReturns) {
    loadAndStart();
    adapter->onConfigAddedOrUpdated(L"k", L"v", L"o", true, true, L"S", L"T", false);
    const auto record = service->getConfig(L"k");
    EXPECT_EQ(record->getValue(), L"v");
    EXPECT_EQ(record->getOriginalValue(), L"o");
    EXPECT_TRUE(record->getisOverridden());
    EXPECT_TRUE(record->getisDefined());
    EXPECT_EQ(record->getValueStoreName(), L"S");
    EXPECT_EQ(record->getOriginalValueStoreName(), L"T");
    EXPECT_THAT(tasks(), IsEmpty());
}

TEST_F(ConfigAdapterNotifications, AChangeOnAnotherThreadIsPostedUnderItsName) {
    loadAndStart();
    elsewhere();
    adapter->onConfigAddedOrUpdated(L"k", L"v", L"", false, true, L"S", L"", true);
    adapter->onFireIfRequired(L"k\u00e4");
    adapter->onSensitiveKeyAddedOrUpdated(L"k");
    EXPECT_THAT(tasks(),
                ElementsAre("ConfigServiceImpl::OnConfigChanged", "ConfigServiceImpl::FireIfRequired - k\xC3\xA4",
                            "ConfigServiceImpl::OnConfigChanged"));
    factory->servicesDispatcher->runAll();
    EXPECT_EQ(recordOf(L"k"), L"v");
    EXPECT_TRUE(service->isKeySensitive(L"k"));
}

TEST_F(ConfigAdapterNotifications, EveryArgumentOfAPostedChangeSetsItsProperty) {
    loadAndStart();
    const auto observer = observe(L"k");
    std::vector<Change> seen;
    observer->reaction = [&](const std::string&) { seen.push_back(readRecord(L"k")); };
    std::thread([&] {
        announce(overriddenChange, false);
        announce(definedChange, false);
    }).join();
    EXPECT_EQ(readRecord(L"k").value, L"");
    EXPECT_THAT(observer->received, IsEmpty());
    factory->servicesDispatcher->runAll();
    EXPECT_EQ(readRecord(L"k"), definedChange);
    EXPECT_THAT(observer->received, ElementsAre("Value", "OriginalValue", "isOverridden", "ValueStoreName",
                                                "OriginalValueStoreName", "Value", "OriginalValue", "isOverridden",
                                                "isDefined", "ValueStoreName", "OriginalValueStoreName"));
    // The whole record is updated before the first property fires.
    ASSERT_EQ(seen.size(), 11U);
    EXPECT_THAT(std::vector(seen.begin(), seen.begin() + 5), testing::Each(overriddenChange));
    EXPECT_THAT(std::vector(seen.begin() + 5, seen.end()), testing::Each(definedChange));
}

TEST_F(ConfigAdapterNotifications, EveryArgumentOfAPostedDeferredChangeSetsItsProperty) {
    loadAndStart();
    const auto observer = observe(L"k");
    std::thread([&] { announce(overriddenChange, true); }).join();
    factory->servicesDispatcher->runAll();
    EXPECT_EQ(readRecord(L"k"), overriddenChange);
    EXPECT_THAT(observer->received, IsEmpty());
    std::thread([&] { announce(definedChange, true); }).join();
    factory->servicesDispatcher->runAll();
    EXPECT_EQ(readRecord(L"k"), definedChange);
    EXPECT_THAT(observer->received, IsEmpty());
    std::thread([&] { adapter->onFireIfRequired(L"k"); }).join();
    EXPECT_THAT(observer->received, IsEmpty());
    factory->servicesDispatcher->runAll();
    EXPECT_THAT(observer->received, ElementsAre("Value", "OriginalValue", "isOverridden", "isDefined", "ValueStoreName",
                                                "OriginalValueStoreName"));
}

TEST_F(ConfigAdapterNotifications, PostedChangesAreDeliveredInOrder) {
    loadAndStart();
    std::vector<std::string> order;
    std::vector<std::shared_ptr<RecordingValueObserver>> observers;
    for (const std::wstring key : {L"a", L"b", L"c"}) {
        observers.push_back(observe(key));
        observers.back()->reaction = [&order, this, key](const std::string& property) {
            if (property == "Value") {
                order.push_back(KyrCoreUtils::toString(key + L"=" + recordOf(key)));
            }
        };
    }
    std::thread([&] {
        adapter->onConfigAddedOrUpdated(L"b", L"deferred", L"", false, true, L"S", L"", true);
        adapter->onConfigAddedOrUpdated(L"c", L"1", L"", false, true, L"S", L"", false);
        adapter->onConfigAddedOrUpdated(L"a", L"1", L"", false, true, L"S", L"", false);
        adapter->onConfigAddedOrUpdated(L"c", L"2", L"", false, true, L"S", L"", false);
        adapter->onFireIfRequired(L"b");
    }).join();
    factory->servicesDispatcher->runAll();
    EXPECT_THAT(order, ElementsAre("c=1", "a=1", "c=2", "b=deferred"));
}

TEST_F(ConfigAdapterNotifications, AddingAStoreOnAnotherThreadPostsAllChangesBeforeAllFirings) {
    loadAndStart();
    std::thread([&] {
        adapter->addConfigStore(makeReadOnlyStore("S", 100, {{L"alpha", L"1"}, {L"middle", L"2"}, {L"zed", L"3"}}));
    }).join();
    EXPECT_THAT(tasks(),
                ElementsAre("ConfigServiceImpl::OnConfigChanged", "ConfigServiceImpl::OnConfigChanged",
                            "ConfigServiceImpl::OnConfigChanged", "ConfigServiceImpl::FireIfRequired - alpha",
                            "ConfigServiceImpl::FireIfRequired - middle", "ConfigServiceImpl::FireIfRequired - zed"));
    EXPECT_EQ(recordOf(L"middle"), L"");
    factory->servicesDispatcher->runAll();
    EXPECT_EQ(readRecord(L"middle"), (Change{L"middle", L"2", L"2", false, true, L"S", L"S"}));
}

TEST_F(ConfigAdapterNotifications, InFipsModeAQueuedDeferredChangeFiresTheOverwrittenValue) {
    loadAndStart();
    zel::common::FipsUtils::overrideFipsMode(true);
    const auto observer = observe(L"k");
    std::vector<std::wstring> seen;
    observer->reaction = [&](const std::string&) { seen.push_back(recordOf(L"k")); };
    std::thread([&] {
        adapter->onConfigAddedOrUpdated(L"k", L"Telephony_P2P_Enabled", L"", false, true, L"S", L"", true);
        adapter->onFireIfRequired(L"k");
    }).join();
    factory->servicesDispatcher->runAll();
    EXPECT_THAT(seen, ElementsAre(L"false", L"false", L"false"));
    zel::common::FipsUtils::overrideFipsMode(false);
    EXPECT_EQ(recordOf(L"k"), L"false");
}

TEST_F(ConfigAdapterNotifications, TheTableOfOldNamesIsPostedOnceIfThePluginLoadsOnAnotherThread) {
    elsewhere();
    load();
    EXPECT_EQ(tasks().front(), "ConfigServiceImpl::setupConfigKeyAliases");
    factory->servicesDispatcher->runAll();
    EXPECT_EQ(service->getConfig(L"TftpServer1")->getKey(), L"TFTPPrimaryServer");
}

TEST_F(ConfigAdapterNotifications, AWriteOnAnotherThreadUpdatesTheRecordOnTheServicesDispatcher) {
    loadAndStart();
    elsewhere();
    adapter->setConfig(L"k", L"v");
    EXPECT_THAT(tasks(), ElementsAre("ConfigServiceImpl::OnConfigChanged"));
    factory->servicesDispatcher->runAll();
    EXPECT_EQ(recordOf(L"k"), L"v");
}

TEST_F(ConfigAdapterNotifications, AServiceEventIsRaisedOnceOnAnyThread) {
    const auto systemService = fileSystemService(*factory);
    loadAndStart();
    adapter->addServiceEvent(7, ConfigServiceIdsEnum::TFTPDownloadFailed, ServiceEventSeverityEnum::Warning);
    EXPECT_THAT(systemService->events, ElementsAre(FakeSystemService::Event(7, 1, ServiceEventSeverityEnum::Warning)));
    elsewhere();
    adapter->addServiceEvent(8, ConfigServiceIdsEnum::TFTPDownloadFailed, ServiceEventSeverityEnum::Critical);
    EXPECT_THAT(tasks(), ElementsAre("ConfigAdapter::addServiceEvent"));
    EXPECT_EQ(systemService->events.size(), 1U);
    factory->servicesDispatcher->runAll();
    EXPECT_EQ(systemService->events.back(), FakeSystemService::Event(8, 1, ServiceEventSeverityEnum::Critical));
    EXPECT_EQ(systemService->events.size(), 2U);
}

TEST_F(ConfigAdapterNotifications, ServiceEventWithoutASystemServiceIsAWarning) {
    loadAndStart();
    adapter->addServiceEvent(1, ConfigServiceIdsEnum::TFTPDownloadFailed, ServiceEventSeverityEnum::Error);
    EXPECT_EQ(log.getTexts(ZelLogLevel::Warning).size(), 1U);
}

TEST_F(ConfigAdapterNotifications, AllRecordsOfABatchAreUpdatedBeforeAnyObserverIsCalled) {
    struct Watcher final : ConfigValueObserver {
        void OnKeyChanged() override {}
        void OnValueChanged() override { seen.push_back(other->getValue()); }
        void OnOriginalValueChanged() override {}
        void OnisOverriddenChanged() override {}
        void OnisDefinedChanged() override {}
        void OnValueStoreNameChanged() override {}
        void OnOriginalValueStoreNameChanged() override {}
        std::shared_ptr<ConfigValue> other;
        std::vector<std::wstring> seen;
    };
    loadAndStart();
    const auto watcher = std::make_shared<Watcher>();
    watcher->other = service->getConfig(L"zed");
    service->getConfig(L"alpha")->addObserver(std::weak_ptr<ConfigValueObserver>(watcher));
    adapter->addConfigStore(makeReadOnlyStore("S", 100, {{L"alpha", L"1"}, {L"middle", L"2"}, {L"zed", L"3"}}));
    EXPECT_THAT(watcher->seen, ElementsAre(L"3"));
    adapter->removeConfigStore("S");
    EXPECT_THAT(watcher->seen, ElementsAre(L"3", L""));
}

TEST_F(ConfigAdapterNotifications, WithoutAServiceChangesAreDropped) {
    const auto lone = std::make_shared<ConfigAdapter>(factory);
    lone->onConfigAddedOrUpdated(L"k", L"v", L"", false, true, L"S", L"", false);
    lone->onFireIfRequired(L"k");
    EXPECT_THAT(tasks(), IsEmpty());
}

TEST_F(ConfigAdapterNotifications, WithoutAServicesDispatcherCallsAreDropped) {
    struct DispatcherlessFactory final : testing_host::RecordingFactory {
        std::shared_ptr<Processing::ServicesDispatcher> getServicesDispatcher() override {
            return gone ? nullptr : servicesDispatcher;
        }
        bool gone = false;
    };
    const auto ending = std::make_shared<DispatcherlessFactory>();
    factory = ending;
    const auto systemService = fileSystemService(*factory);
    loadAndStart();
    ending->gone = true;
    adapter->onConfigAddedOrUpdated(L"k", L"v", L"", false, true, L"S", L"", false);
    adapter->onFireIfRequired(L"k");
    adapter->onSensitiveKeyAddedOrUpdated(L"k");
    adapter->addServiceEvent(7, ConfigServiceIdsEnum::TFTPDownloadFailed, ServiceEventSeverityEnum::Warning);
    ending->gone = false;
    EXPECT_THAT(tasks(), IsEmpty());
    EXPECT_EQ(recordOf(L"k"), L"");
    EXPECT_THAT(systemService->events, IsEmpty());
}

} // namespace ZelUnified
