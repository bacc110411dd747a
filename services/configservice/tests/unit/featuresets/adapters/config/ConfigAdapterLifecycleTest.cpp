#include "ConfigAdapterFixture.h"
#include "FakeSystemService.h"
#include "StepwiseServicesDispatcher.h"

namespace ZelUnified {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

class ConfigAdapterLifecycle : public ConfigAdapterFixture {};

TEST_F(ConfigAdapterLifecycle, ConstructionBuildsTheChainWithoutStartingTheFeatureSet) {
    givenDefaults({{L"k", L"default"}});
    load();
    EXPECT_FALSE(adapter->IsFeatureSetStarted(1300));
    EXPECT_TRUE(adapter->IsFeatureSetProvisioned(1300));
    EXPECT_FALSE(adapter->IsFeatureSetProvisioned(1301));
    EXPECT_TRUE(adapter->GetFeatureSetDependencies(1300).empty());
    EXPECT_EQ(valueOf(L"k"), L"default");
    EXPECT_EQ(recordOf(L"k"), L"default");
    EXPECT_THAT(monitor->observers, IsEmpty());
    EXPECT_EQ(logged().front(), "Creating a new instance of the ConfigAdapter.");
    EXPECT_EQ(levelOf("Creating a new instance of the ConfigAdapter."), ZelLogLevel::Info);
}

TEST_F(ConfigAdapterLifecycle, StartWithAnotherIdDoesNothing) {
    load();
    log.clear();
    adapter->StartFeatureSet(1301, nullptr);
    EXPECT_FALSE(adapter->IsFeatureSetStarted(1300));
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ConfigAdapterLifecycle, IsStartedReturnsTrueForItsIdOnly) {
    loadAndStart();
    EXPECT_TRUE(adapter->IsFeatureSetStarted(1300));
    EXPECT_FALSE(adapter->IsFeatureSetStarted(1301));
}

TEST_F(ConfigAdapterLifecycle, ASecondStartRegistersNothing) {
    const auto systemService = fileSystemService(*factory);
    load();
    start();
    start();
    EXPECT_EQ(systemService->callbacks->added.size(), 1U);
    EXPECT_EQ(monitor->observers.size(), 1U);
    EXPECT_EQ(countLogged("starting config feature set"), 2);
    EXPECT_EQ(levelOf("starting config feature set"), ZelLogLevel::Info);
}

TEST_F(ConfigAdapterLifecycle, TheResetCallbackIsRegisteredImmediatelyOnTheServicesThread) {
    const auto systemService = fileSystemService(*factory);
    load();
    start();
    ASSERT_EQ(systemService->callbacks->added.size(), 1U);
    EXPECT_EQ(systemService->callbacks->added.front(), std::shared_ptr<ProviderResetDataCallback>(adapter));
    EXPECT_EQ(systemService->callbacks->orders.front(), 0);
}

TEST_F(ConfigAdapterLifecycle, TheRegistrationOfTheResetCallbackIsPostedFromAnotherThread) {
    const auto systemService = fileSystemService(*factory);
    load();
    factory->servicesDispatcher->disown();
    start();
    EXPECT_THAT(systemService->callbacks->added, IsEmpty());
    EXPECT_THAT(factory->servicesDispatcher->getTaskNames(), Contains("ConfigAdapter::registerResetDataCallback"));
    EXPECT_TRUE(adapter->IsFeatureSetStarted(1300));
    factory->servicesDispatcher->runAll();
    EXPECT_EQ(systemService->callbacks->added.size(), 1U);
}

TEST_F(ConfigAdapterLifecycle, StartWithoutASystemServiceSucceeds) {
    loadAndStart();
    EXPECT_TRUE(adapter->IsFeatureSetStarted(1300));
}

TEST_F(ConfigAdapterLifecycle, StopWithoutStartDoesNotTouchTheChain) {
    load();
    adapter->StopFeatureSet(1300, nullptr);
    EXPECT_TRUE(inChain("RegistryConfigStore"));
    EXPECT_EQ(countLogged("stopping config feature set"), 1);
    EXPECT_EQ(levelOf("stopping config feature set"), ZelLogLevel::Info);
}

TEST_F(ConfigAdapterLifecycle, StopWithAnotherIdDoesNothing) {
    loadAndStart();
    adapter->StopFeatureSet(1301, nullptr);
    EXPECT_TRUE(adapter->IsFeatureSetStarted(1300));
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ConfigAdapterLifecycle, StopRemovesStoresThatAreNotLocal) {
    loadAndStart();
    const auto foreign = makeReadOnlyStore("Foreign", 100, {{L"k", L"v"}});
    foreign->local = false;
    adapter->addConfigStore(foreign);
    adapter->StopFeatureSet(1300, nullptr);
    EXPECT_FALSE(adapter->IsFeatureSetStarted(1300));
    for (const auto* gone : {"Foreign", "LocalFileConfigStore", "RegistryConfigStore"}) {
        EXPECT_FALSE(inChain(gone)) << gone;
    }
    for (const auto* kept : {"lumora-config-defaults.xml", "InMemoryConfigStore", "UrlProvisioningConfigStore"}) {
        EXPECT_TRUE(inChain(kept)) << kept;
    }
    EXPECT_THAT(monitor->observers, IsEmpty());
    EXPECT_FALSE(service->getConfig(L"k")->getisDefined());
}

TEST_F(ConfigAdapterLifecycle, StopWaitsUntilTheServicesDispatcherHasRemovedThem) {
    const auto stepwise = std::make_shared<StepwiseFactory>();
    factory = stepwise;
    loadAndStart();
    stepwise->dispatcher->access = false;
    adapter->StopFeatureSet(1300, nullptr);
    EXPECT_THAT(stepwise->dispatcher->waitedFor, ElementsAre("ConfigStoreManager::reset"));
    EXPECT_FALSE(inChain("RegistryConfigStore"));
    stepwise->dispatcher->access = true;
    stepwise->dispatcher->posted.clear();
}

TEST_F(ConfigAdapterLifecycle, AStartAddsEachMissingStoreOnce) {
    loadAndStart();
    EXPECT_TRUE(adapter->removeConfigStore("InMemoryConfigStore"));
    adapter->StopFeatureSet(1300, nullptr);
    log.clear();
    start();
    EXPECT_TRUE(inChain("InMemoryConfigStore"));
    EXPECT_TRUE(inChain("LocalFileConfigStore"));
    EXPECT_THAT(log.getTexts("ConfigService-ConfigStoreManager"),
                ElementsAre(testing::StartsWith("adding new store: InMemoryConfigStore"),
                            testing::StartsWith("adding new store: LocalFileConfigStore")));
}

TEST_F(ConfigAdapterLifecycle, StartAfterStopCreatesTheUsersStoreAndNotTheRegistrys) {
    const auto systemService = fileSystemService(*factory);
    load();
    start();
    adapter->setConfig(L"k", L"v");
    factory->backgroundDispatcher->runAll();
    adapter->StopFeatureSet(1300, nullptr);
    start();
    EXPECT_TRUE(inChain("InMemoryConfigStore"));
    EXPECT_TRUE(inChain("LocalFileConfigStore"));
    EXPECT_FALSE(inChain("RegistryConfigStore"));
    EXPECT_EQ(valueOf(L"k"), L"v");
    EXPECT_EQ(systemService->callbacks->added.size(), 1U);
    EXPECT_EQ(monitor->observers.size(), 1U);
}

TEST_F(ConfigAdapterLifecycle, RefreshCreatesTheStoresThatAStopRemoved) {
    givenPolicy(L"PolicyKey", L"policy");
    loadAndStart();
    adapter->StopFeatureSet(1300, nullptr);
    EXPECT_EQ(valueOf(L"PolicyKey"), L"(none)");
    adapter->refreshConfigFeatureSet();
    EXPECT_EQ(valueOf(L"PolicyKey"), L"policy");
    EXPECT_FALSE(adapter->IsFeatureSetStarted(1300));
}

TEST_F(ConfigAdapterLifecycle, RefreshReadsTheRegistryAgainAndEmptiesTheVolatileStore) {
    loadAndStart();
    adapter->setInMemoryConfig(L"volatile", L"v");
    givenPolicy(L"PolicyKey", L"policy");
    adapter->refreshConfigFeatureSet();
    EXPECT_EQ(recordOf(L"PolicyKey"), L"policy");
    EXPECT_EQ(valueOf(L"volatile"), L"(none)");
    EXPECT_TRUE(adapter->IsFeatureSetStarted(1300));
}

TEST_F(ConfigAdapterLifecycle, RefreshDoesNotReadTheDefaultsAgain) {
    givenDefaults({{L"k", L"old"}});
    loadAndStart();
    givenDefaults({{L"k", L"new"}});
    adapter->refreshConfigFeatureSet();
    EXPECT_EQ(valueOf(L"k"), L"old");
}

TEST_F(ConfigAdapterLifecycle, DestroyDestroysTheStoresAndLeavesThemInTheChain) {
    loadAndStart();
    const auto store = makeReadOnlyStore("Foreign", 100, {{L"k", L"v"}});
    adapter->addConfigStore(store);
    adapter->Destroy();
    EXPECT_EQ(store->timesDestroyed, 1);
    EXPECT_EQ(valueOf(L"k"), L"v");
    EXPECT_FALSE(adapter->IsFeatureSetStarted(1300));
    EXPECT_EQ(monitor->observers.size(), 1U);
}

TEST_F(ConfigAdapterLifecycle, PowerDownDestroysAndALaterStopDoesNothing) {
    loadAndStart();
    monitor->announce(ZelSystemMonitor::PowerEventTypeEnum::PowerDown);
    EXPECT_FALSE(adapter->IsFeatureSetStarted(1300));
    const std::string line = "Config adapter received a power down event. Calling destroy on configAdapter";
    EXPECT_EQ(countLogged(line), 1);
    EXPECT_EQ(levelOf(line), ZelLogLevel::Info);
    adapter->StopFeatureSet(1300, nullptr);
    EXPECT_EQ(monitor->observers.size(), 1U);
    EXPECT_TRUE(inChain("RegistryConfigStore"));
}

TEST_F(ConfigAdapterLifecycle, OtherPowerEventsChangeNothing) {
    loadAndStart();
    for (const int type : {0, 1, 2, 4}) {
        monitor->announce(static_cast<ZelSystemMonitor::PowerEventTypeEnum::PowerEventType>(type));
    }
    EXPECT_TRUE(adapter->IsFeatureSetStarted(1300));
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ConfigAdapterLifecycle, AWriteQueuedBeforeAPowerDownDoesNotChangeTheUsersFile) {
    loadAndStart();
    adapter->setConfig(L"k", L"v");
    factory->backgroundDispatcher->runAll();
    adapter->setConfig(L"k", L"lost");
    monitor->announce(ZelSystemMonitor::PowerEventTypeEnum::PowerDown);
    factory->backgroundDispatcher->runAll();
    unload();
    load();
    EXPECT_EQ(valueOf(L"k"), L"v");
}

TEST_F(ConfigAdapterLifecycle, StartWithoutASharedOwnerThrowsAndLeavesItStarted) {
    load();
    const auto lone = std::make_unique<ConfigAdapter>(factory);
    EXPECT_THROW(lone->StartFeatureSet(1300, nullptr), std::bad_weak_ptr);
    EXPECT_FALSE(lone->IsFeatureSetStarted(1300));
    factory->servicesDispatcher->disown();
    EXPECT_THROW(lone->StartFeatureSet(1300, nullptr), std::bad_weak_ptr);
    EXPECT_TRUE(lone->IsFeatureSetStarted(1300));
    factory->servicesDispatcher->claim();
    factory->servicesDispatcher->clear();
}

TEST_F(ConfigAdapterLifecycle, StartCreatesItsStoresBeforeItSetsTheStartedFlag) {
    loadAndStart();
    adapter->StopFeatureSet(1300, nullptr);
    log.clear();
    start();
    EXPECT_EQ(countLogged("Config FeatureSet Not Started"), 1) << "the mode of the user's store is read";
    EXPECT_TRUE(inChain("LocalFileConfigStore"));
}

TEST(ConfigAdapter, WithoutAFactoryEveryOperationDoesNothing) {
    const auto adapter = std::make_shared<ConfigAdapter>();
    std::wstring text = L"before";
    adapter->StartFeatureSet(1300, nullptr);
    EXPECT_FALSE(adapter->IsFeatureSetStarted(1300));
    adapter->StopFeatureSet(1300, nullptr);
    adapter->refreshConfigFeatureSet();
    adapter->addConfigStore(makeReadOnlyStore("S", 1));
    EXPECT_FALSE(adapter->removeConfigStore("S"));
    EXPECT_FALSE(adapter->isConfigStorePresent("S"));
    EXPECT_EQ(adapter->getConfigStoreByName("S"), nullptr);
    EXPECT_FALSE(adapter->getConfig(L"k", text, false));
    EXPECT_FALSE(adapter->setConfig(L"k", L"v"));
    EXPECT_FALSE(adapter->setConfig(ConfigMap{{L"k", L"v"}}));
    EXPECT_FALSE(adapter->setInMemoryConfig(L"k", L"v"));
    adapter->setMdmConfig("<a/>");
    adapter->resetConfig(L"k");
    adapter->resetConfigData("S");
    adapter->removeAllCachedConfigStores();
    adapter->setKeySensitive(L"k");
    EXPECT_FALSE(adapter->isKeySensitive(L"k"));
    EXPECT_FALSE(adapter->setUrlProvisioningData(L"?ServicesDomain=a"));
    EXPECT_FALSE(adapter->resetAllowUriProvisioningData());
    EXPECT_EQ(adapter->getValueFromConfigStore("S", L"k"), L"");
    adapter->getAllConfigForPRT(text);
    EXPECT_EQ(text, L"before");
    adapter->SetEnabledServices();
    adapter->addServiceEvent(1, ConfigServiceIdsEnum::TFTPDownloadFailed, ServiceEventSeverityEnum::Error);
    adapter->onFireIfRequired(L"k");
    adapter->Destroy();
    EXPECT_EQ(adapter->getInterfaceName(), "ProviderResetDataCallback");
}

} // namespace ZelUnified
