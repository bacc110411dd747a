#include "ConfigAdapterFixture.h"

#include <zel/EncryptFileUtils.h>

#include <ConfigStoreAddedObserver.h>
#include <FaultInjectingFileLayer.h>

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;

class ConfigAdapterStores : public ConfigAdapterFixture {
protected:
    std::vector<std::string> errors() const { return log.getTexts(ZelLogLevel::Error); }
    void loadQuietly() {
        load();
        log.clear();
    }
};

TEST_F(ConfigAdapterStores, BeforeTheStartAddingAStoreIsRefused) {
    loadQuietly();
    adapter->addConfigStore(makeReadOnlyStore("Foreign", 100, {{L"k", L"v"}}));
    EXPECT_THAT(errors(), ElementsAre("Config FeatureSet Not Started, failed to add ConfigStore with name: [Foreign]"));
    EXPECT_EQ(valueOf(L"k"), L"(none)");
}

TEST_F(ConfigAdapterStores, BeforeTheStartRemovingAStoreIsRefused) {
    loadQuietly();
    EXPECT_FALSE(adapter->removeConfigStore("RegistryConfigStore"));
    EXPECT_THAT(errors(), ElementsAre("Config FeatureSet Not Started, failed to remove ConfigStore with name: "
                                      "[RegistryConfigStore]"));
    EXPECT_TRUE(inChain("RegistryConfigStore"));
}

TEST_F(ConfigAdapterStores, BeforeTheStartNoStoreIsReportedAsPresent) {
    loadQuietly();
    EXPECT_FALSE(adapter->isConfigStorePresent("RegistryConfigStore"));
    EXPECT_THAT(errors(), ElementsAre("Config FeatureSet Not Started, failed to check existance of ConfigStore with "
                                      "name: [RegistryConfigStore]"));
}

TEST_F(ConfigAdapterStores, BeforeTheStartOtherOperationsLogALineAndSucceed) {
    givenDefaults({{L"k", L"v"}});
    loadQuietly();
    std::wstring value;
    EXPECT_TRUE(adapter->getConfig(L"k", value, false));
    EXPECT_TRUE(adapter->getConfigStoreByName("RegistryConfigStore"));
    EXPECT_TRUE(adapter->setInMemoryConfig(L"m", L"v"));
    EXPECT_EQ(adapter->getValueFromConfigStore("InMemoryConfigStore", L"m"), L"v");
    adapter->getAllConfigForPRT(value);
    adapter->removeAllCachedConfigStores();
    auto lines = logged();
    std::erase_if(lines, [](const auto& line) { return !line.starts_with("Config FeatureSet Not Started"); });
    EXPECT_THAT(lines, ElementsAre("Config FeatureSet Not Started", "Config FeatureSet Not Started",
                                   "Config FeatureSet Not Started", "Config FeatureSet Not Started",
                                   "Config FeatureSet Not Started",
                                   "Config FeatureSet Not Started, failed to remove cached ConfigStores"));
}

TEST_F(ConfigAdapterStores, BeforeTheStartCopiesAreRemovedWithAnError) {
    loadAndStart();
    adapter->addConfigStore(makeCachingStore("TftpStore", 40, {{L"k", L"v"}}));
    unload();
    loadQuietly();
    ASSERT_TRUE(std::filesystem::exists(cacheFile("TftpStore")));
    adapter->removeAllCachedConfigStores();
    EXPECT_FALSE(std::filesystem::exists(cacheFile("TftpStore")));
    EXPECT_THAT(errors(), ElementsAre("Config FeatureSet Not Started, failed to remove cached ConfigStores"));
}

TEST_F(ConfigAdapterStores, BeforeTheStartWritesAndSwitchesSucceedWithoutALine) {
    loadQuietly();
    EXPECT_TRUE(adapter->setConfig(L"k", L"v"));
    adapter->resetConfig(L"k");
    adapter->setMdmConfig("<a><b><m>v</m></b></a>");
    adapter->resetConfigData("LocalFileConfigStore");
    EXPECT_TRUE(adapter->setUrlProvisioningData(L"?ServicesDomain=a"));
    EXPECT_TRUE(adapter->resetAllowUriProvisioningData());
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(ConfigAdapterStores, AddingAndRemovingAStoreUpdatesTheRecords) {
    loadAndStart();
    adapter->addConfigStore(makeReadOnlyStore("Foreign", 100, {{L"k", L"v"}}));
    EXPECT_TRUE(adapter->isConfigStorePresent("FOREIGN"));
    EXPECT_EQ(recordOf(L"k"), L"v");
    EXPECT_TRUE(adapter->removeConfigStore("Foreign"));
    EXPECT_FALSE(service->getConfig(L"k")->getisDefined());
}

TEST_F(ConfigAdapterStores, NullStoreIsIgnored) {
    loadAndStart();
    adapter->addConfigStore(nullptr);
    EXPECT_THAT(log.getTexts("ConfigService-ConfigStoreManager"), IsEmpty());
    adapter->updateExistingConfigStore(nullptr, {});
    EXPECT_THAT(log.getTexts("ConfigService-ConfigStoreManager"), IsEmpty());
    EXPECT_THAT(errors(), IsEmpty());
}

TEST_F(ConfigAdapterStores, RemovingAnUnknownStoreRewritesTheRecord) {
    loadAndStart();
    EXPECT_FALSE(adapter->removeConfigStore("Nobody"));
    EXPECT_EQ(valueOf(L"PrimaryConfigStores"), L"");
}

TEST_F(ConfigAdapterStores, RemovingALiveStoreRemovesItsCopyAndRecord) {
    loadAndStart();
    adapter->addConfigStore(makeCachingStore("TftpStore", 40, {{L"k", L"v"}}));
    EXPECT_TRUE(adapter->removeConfigStore("TftpStore"));
    EXPECT_FALSE(std::filesystem::exists(cacheFile("TftpStore")));
    EXPECT_EQ(valueOf(L"PrimaryConfigStores"), L"");
}

TEST_F(ConfigAdapterStores, RemovingARestoredCopyKeepsItsFile) {
    loadAndStart();
    adapter->addConfigStore(makeCachingStore("TftpStore", 40, {{L"k", L"v"}}));
    unload();
    loadAndStart();
    EXPECT_TRUE(adapter->removeConfigStore("TftpStore"));
    EXPECT_TRUE(std::filesystem::exists(cacheFile("TftpStore")));
    EXPECT_EQ(valueOf(L"PrimaryConfigStores"), L"");
}

TEST_F(ConfigAdapterStores, RemovingAStoreAlsoRemovesTheStoreNamedAfterItsFile) {
    loadAndStart();
    testing_host::writeFile(cacheFile("Foreign"), "x");
    adapter->addConfigStore(makeReadOnlyStore("cachedForeign.dat", 101));
    EXPECT_TRUE(adapter->removeConfigStore("Foreign"));
    EXPECT_FALSE(inChain("cachedForeign.dat"));
    EXPECT_FALSE(std::filesystem::exists(cacheFile("Foreign")));
}

TEST_F(ConfigAdapterStores, SecondPushOfDeviceManagementReplacesTheFirst) {
    loadAndStart();
    adapter->setMdmConfig("<a><b><one>1</one></b></a>");
    adapter->setMdmConfig("<a><b><two>2</two></b></a>");
    EXPECT_FALSE(service->getConfig(L"one")->getisDefined());
    EXPECT_EQ(recordOf(L"two"), L"2");
    adapter->setMdmConfig("");
    EXPECT_FALSE(service->getConfig(L"two")->getisDefined());
    EXPECT_TRUE(inChain("MdmConfigStore"));
}

TEST_F(ConfigAdapterStores, ProvisioningSucceedsOnceUntilItIsReset) {
    loadAndStart();
    EXPECT_TRUE(adapter->setUrlProvisioningData(L"?ServicesDomain=one"));
    EXPECT_EQ(valueOf(L"AllowUrlProvisioning"), L"False");
    EXPECT_FALSE(adapter->setUrlProvisioningData(L"?ServicesDomain=two"));
    EXPECT_EQ(valueOf(L"ServicesDomain"), L"one");
    EXPECT_TRUE(adapter->resetAllowUriProvisioningData());
    EXPECT_FALSE(adapter->resetAllowUriProvisioningData());
    EXPECT_TRUE(adapter->setUrlProvisioningData(L"?ServicesDomain=two"));
    EXPECT_EQ(valueOf(L"ServicesDomain"), L"two");
}

TEST_F(ConfigAdapterStores, ForbiddenProvisioningIsRefusedWithoutALine) {
    givenDefaults({{L"AllowUrlProvisioning", L"FALSE"}});
    loadAndStart();
    EXPECT_FALSE(adapter->setUrlProvisioningData(L"?ServicesDomain=one"));
    EXPECT_THAT(logged(), IsEmpty());
    // The user cannot remove a prohibition of the administrator.
    EXPECT_FALSE(adapter->resetAllowUriProvisioningData());
}

TEST_F(ConfigAdapterStores, RegisteredObserverIsToldOfEachNewStoreUntilUnregistered) {
    struct Recorder final : ConfigStoreAddedObserver {
        void OnConfigStoreAdded(const std::string& storeName) override { names.push_back(storeName); }
        std::vector<std::string> names;
    };
    loadAndStart();
    factory->backgroundDispatcher->runAll();
    const auto recorder = std::make_shared<Recorder>();
    adapter->registerConfigStoreAddedObserver(recorder);
    adapter->addConfigStore(makeReadOnlyStore("One", 100));
    factory->backgroundDispatcher->runAll();
    adapter->unregisterConfigStoreAddedObserver(recorder);
    adapter->addConfigStore(makeReadOnlyStore("Two", 100));
    factory->backgroundDispatcher->runAll();
    EXPECT_THAT(recorder->names, ElementsAre("One"));
}

TEST_F(ConfigAdapterStores, RemovingAllCachedStoresDeletesTheirFilesAndKeepsTheStores) {
    loadAndStart();
    adapter->addConfigStore(makeCachingStore("TftpStore", 40, {{L"k", L"v"}}));
    adapter->removeAllCachedConfigStores();
    EXPECT_FALSE(std::filesystem::exists(cacheFile("TftpStore")));
    EXPECT_TRUE(inChain("TftpStore"));
}

TEST_F(ConfigAdapterStores, CreatesABootstrapStoreThatACallerAdds) {
    loadAndStart();
    const auto file = profile.config() / "installer.properties";
    testing_host::writeFile(file, "FromInstaller: installed\n");
    const auto featureSet = factory->getFeatureSetByType<ConfigFeatureSet>();
    auto* const stores = dynamic_cast<BootstrapStoreFactory*>(featureSet.get());
    ASSERT_NE(stores, nullptr);
    const auto store = stores->createBootstrapStore(file.string(), 50);
    EXPECT_EQ(store->getName(), "BootstrapConfigStore");
    EXPECT_EQ(store->getPriority(), 50);
    EXPECT_FALSE(inChain("BootstrapConfigStore"));
    adapter->addConfigStore(store);
    EXPECT_EQ(valueOf(L"FromInstaller"), L"installed");
}

TEST_F(ConfigAdapterStores, AMapOfManyKeysIsWrittenToTheUsersFileOnce) {
    using testing_host::FaultInjectingFileLayer;
    loadAndStart();
    adapter->setConfig(L"Key", L"creates the encryption key");
    factory->backgroundDispatcher->runAll();
    ConfigMap values;
    for (int i = 0; i < 1000; ++i) {
        values.emplace(L"Key" + std::to_wstring(i), std::to_wstring(i));
    }
    const auto files = std::make_shared<FaultInjectingFileLayer>();
    zel::storage::EncryptFileUtils::overrideFileLayer(files);
    EXPECT_TRUE(adapter->setConfig(values));
    EXPECT_THAT(factory->backgroundDispatcher->getTaskNames(), ElementsAre("ConfigStore::persistValues"));
    factory->backgroundDispatcher->runAll();
    zel::storage::EncryptFileUtils::overrideFileLayer(nullptr);
    EXPECT_EQ(std::ranges::count(files->getCalls(), FaultInjectingFileLayer::Operation::Rename), 1);
    EXPECT_EQ(recordOf(L"Key999"), L"999");
}

} // namespace ZelUnified
