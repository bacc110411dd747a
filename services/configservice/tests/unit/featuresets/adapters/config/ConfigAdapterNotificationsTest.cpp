#include "ConfigAdapterFixture.h"
#include "FakeSystemService.h"

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;

class ConfigAdapterNotifications : public ConfigAdapterFixture {
protected:
    std::vector<std::string> tasks() const { return factory->servicesDispatcher->getTaskNames(); }
    void elsewhere() { factory->servicesDispatcher->disown(); }
};

TEST_F(ConfigAdapterNotifications, OnTheServicesDispatcherAChangeHasArrivedOnReturn) {
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

TEST_F(ConfigAdapterNotifications, ElsewhereEachIsPostedUnderItsName) {
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

TEST_F(ConfigAdapterNotifications, AliasTableIsPostedOnceWhenThePluginLoadsElsewhere) {
    elsewhere();
    load();
    EXPECT_EQ(tasks().front(), "ConfigServiceImpl::setupConfigKeyAliases");
    factory->servicesDispatcher->runAll();
    EXPECT_EQ(service->getConfig(L"TftpServer1")->getKey(), L"TFTPPrimaryServer");
}

TEST_F(ConfigAdapterNotifications, WriteFromElsewhereReachesTheRecordOnTheServicesDispatcher) {
    loadAndStart();
    elsewhere();
    adapter->setConfig(L"k", L"v");
    EXPECT_THAT(tasks(), ElementsAre("ConfigServiceImpl::OnConfigChanged"));
    factory->servicesDispatcher->runAll();
    EXPECT_EQ(recordOf(L"k"), L"v");
}

TEST_F(ConfigAdapterNotifications, ServiceEventIsRaisedOnceFromEitherSide) {
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

TEST_F(ConfigAdapterNotifications, RecordsOfABatchAreAllUpToDateBeforeAnyObserverHears) {
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
