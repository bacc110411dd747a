#include "featuresets/adapters/config/ConfigAdapterFixture.h"

#include <XmlConfigStore.h>

namespace ZelUnified {

using testing::Contains;

class CachedStoresTest : public ConfigAdapterFixture {
protected:
    /// Runs and ends the service once with a delivered remote store.
    void givenEarlierRunWith(const std::shared_ptr<FakeConfigStore>& store) {
        loadAndStart();
        adapter->addConfigStore(store);
        unload();
    }
    void givenRecord(const std::wstring& record) { givenDefaults({{L"PrimaryConfigStores", record}}); }
    int priorityOf(const std::string& name) { return adapter->getConfigStoreByName(name)->getPriority(); }
    std::wstring record() { return valueOf(L"PrimaryConfigStores"); }
};

TEST_F(CachedStoresTest, AddingACachingStoreWritesACopyAndARecord) {
    loadAndStart();
    adapter->addConfigStore(makeCachingStore("TftpStore", 40, {{L"k", L"v"}}));
    EXPECT_EQ(record(), L"TftpStore:41;");
    EXPECT_TRUE(std::filesystem::exists(cacheFile("TftpStore")));
    EXPECT_FALSE(inChain("cachedTftpStore.dat"));
}

TEST_F(CachedStoresTest, AddingAStoreRemovesTheStoreNamedAfterItsFileAndKeepsTheFile) {
    loadAndStart();
    adapter->addConfigStore(makeReadOnlyStore("cachedTftpStore.dat", 41, {{L"k", L"live"}}));
    adapter->addConfigStore(makeCachingStore("TftpStore", 40, {{L"k", L"v"}}));
    EXPECT_FALSE(inChain("cachedTftpStore.dat"));
    EXPECT_TRUE(std::filesystem::exists(cacheFile("TftpStore")));
}

TEST_F(CachedStoresTest, AStoreThatRequestsNoCopyGetsNeitherCopyNorRecord) {
    loadAndStart();
    adapter->addConfigStore(makeReadOnlyStore("Plain", 40, {{L"k", L"v"}}));
    EXPECT_EQ(record(), L"(none)");
    EXPECT_FALSE(std::filesystem::exists(cacheFile("Plain")));
}

TEST_F(CachedStoresTest, RecordListsStoresByNameIgnoringCase) {
    loadAndStart();
    adapter->addConfigStore(makeCachingStore("tftpStore", 40));
    adapter->addConfigStore(makeCachingStore("PresenceConfigStore", 30));
    EXPECT_EQ(record(), L"PresenceConfigStore:31;tftpStore:41;");
}

TEST_F(CachedStoresTest, TheRecordContainsTheStoresCachedPriority) {
    struct Distant final : XmlConfigStore {
        Distant() : XmlConfigStore("TftpStore", 40, false, false, "", false) {}
        bool shouldCacheConfigStore() override { return true; }
        int getCachedPriority() override { return 77; }
    };
    loadAndStart();
    adapter->addConfigStore(std::make_shared<Distant>());
    EXPECT_EQ(record(), L"TftpStore:77;");
}

TEST_F(CachedStoresTest, AKnownStoreKeepsItsSpellingInTheRecordAndGetsTheNewPriority) {
    givenRecord(L"TFTPSTORE:9;");
    loadAndStart();
    adapter->addConfigStore(makeCachingStore("TftpStore", 40));
    EXPECT_EQ(record(), L"TFTPSTORE:41;");
}

TEST_F(CachedStoresTest, AddingAStoreRemovesMalformedEntriesFromTheRecord) {
    givenRecord(L"B;A:1:2;Z:x;");
    loadAndStart();
    adapter->addConfigStore(makeCachingStore("TftpStore", 40));
    EXPECT_EQ(record(), L"TftpStore:41;Z:x;");
}

TEST_F(CachedStoresTest, TheNextRunRestoresTheCopyUnderTheStoresNameAndRecordedPriority) {
    givenEarlierRunWith(makeCachingStore("TftpStore", 40, {{L"k", L"v"}}));
    load();
    EXPECT_EQ(valueOf(L"k"), L"v");
    EXPECT_EQ(priorityOf("TftpStore"), 41);
    EXPECT_EQ(recordOf(L"k"), L"v");
}

TEST_F(CachedStoresTest, ALiveStoreReplacesItsCopy) {
    givenEarlierRunWith(makeCachingStore("TftpStore", 40, {{L"k", L"old"}, {L"gone", L"x"}}));
    loadAndStart();
    adapter->addConfigStore(makeCachingStore("TftpStore", 40, {{L"k", L"new"}}));
    EXPECT_EQ(valueOf(L"k"), L"new");
    EXPECT_EQ(recordOf(L"gone"), L"");
    EXPECT_EQ(priorityOf("TftpStore"), 40);
}

TEST_F(CachedStoresTest, AListedKeyWithoutAValueIsNotCopiedAndAnEmptyOneIs) {
    const auto store = makeCachingStore("TftpStore", 40, {{L"empty", L""}, {L"silent", L"v"}});
    store->unanswered.insert(L"silent");
    givenEarlierRunWith(store);
    load();
    EXPECT_EQ(valueOf(L"empty"), L"");
    EXPECT_EQ(valueOf(L"silent"), L"(none)");
}

TEST_F(CachedStoresTest, AMalformedPriorityBecomes240) {
    givenRecord(L"A:abc;B;");
    load();
    EXPECT_EQ(priorityOf("A"), 240);
    EXPECT_FALSE(inChain("B"));
}

TEST_F(CachedStoresTest, AMalformedPriorityOfThePresenceStoreBecomes240) {
    givenRecord(L"PresenceConfigStore:abc;");
    load();
    EXPECT_EQ(priorityOf("PresenceConfigStore"), 240);
}

TEST_F(CachedStoresTest, RecordedNameThroughTheParentFolderIsNoStore) {
    givenRecord(L"/../x:1;a\\..\\x:2;Corp/Policy:3;..x:4;a..b:5;a_.._b:6;..:7;../y:8;y\\..:9;");
    load();
    for (const std::string name : {"/../x", "a\\..\\x", "..", "../y", "y\\.."}) {
        EXPECT_FALSE(inChain(name)) << name;
        const std::string line = "Name contains \"..\", cached store not read: [" + name + "]";
        EXPECT_EQ(countLogged(line), 1);
        EXPECT_EQ(levelOf(line), ZelLogLevel::Warning);
    }
    for (const auto* name : {"Corp/Policy", "..x", "a..b", "a_.._b"}) {
        EXPECT_TRUE(inChain(name)) << name;
    }
}

TEST_F(CachedStoresTest, StoreNamedThroughTheParentFolderIsNeitherCachedNorRecorded) {
    const auto elsewhere = profile.root() / "elsewhere.dat";
    for (const std::string name : {"/../../../elsewhere", "..", "../elsewhere", "a\\..\\elsewhere"}) {
        loadAndStart();
        adapter->addConfigStore(makeCachingStore(name, 40, {{L"k", L"v"}}));
        EXPECT_TRUE(inChain(name)) << name;
        EXPECT_EQ(record(), L"(none)") << name;
        const std::string line = "Name contains \"..\", store not cached: [" + name + "]";
        EXPECT_EQ(countLogged(line), 1) << name;
        EXPECT_EQ(levelOf(line), ZelLogLevel::Warning);
        unload();
    }
    EXPECT_FALSE(std::filesystem::exists(elsewhere));
    EXPECT_FALSE(std::filesystem::exists(profile.config() / "Cache"));
}

TEST_F(CachedStoresTest, StoreNamedThroughTheParentFolderDoesNotReplaceAnotherStoresCopy) {
    loadAndStart();
    adapter->addConfigStore(makeCachingStore("Alpha", 40, {{L"k", L"v"}}));
    adapter->addConfigStore(makeCachingStore("x/../cachedAlpha", 41, {{L"k", L"stolen"}}));
    unload();
    load();
    EXPECT_EQ(adapter->getValueFromConfigStore("Alpha", L"k"), L"v");
}

TEST_F(CachedStoresTest, RemovalOfAStoreNamedThroughTheParentFolderDeletesNoFile) {
    const auto victim = profile.root() / "victim.dat";
    testing_host::writeFile(victim, "precious");
    std::filesystem::create_directories(profile.config() / "Cache" / "cached");
    loadAndStart();
    const std::string name = "/../../../victim";
    adapter->addConfigStore(makeCachingStore(name, 40));
    log.clear();
    EXPECT_TRUE(adapter->removeConfigStore(name));
    EXPECT_FALSE(inChain(name));
    EXPECT_EQ(testing_host::readFile(victim), "precious");
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning),
                testing::ElementsAre("Name contains \"..\", cached file not removed: [cached" + name + ".dat]"));
}

TEST_F(CachedStoresTest, NameWithASeparatorHasACopyBelowTheFolder) {
    givenEarlierRunWith(makeCachingStore("Corp/Policy", 40, {{L"k", L"v"}}));
    EXPECT_TRUE(std::filesystem::exists(profile.config() / "Cache" / "cachedCorp" / "Policy.dat"));
    loadAndStart();
    EXPECT_EQ(valueOf(L"k"), L"v");
}

TEST_F(CachedStoresTest, AMissingCopyIsRestoredAsAnEmptyStore) {
    givenRecord(L"A:50;");
    load();
    EXPECT_TRUE(adapter->getConfigStoreByName("A")->getKeys().empty());
}

TEST_F(CachedStoresTest, ThePresenceStoreIsRestoredLast) {
    givenRecord(L"PresenceConfigStore:31;Zed:41;");
    load();
    const auto lines = log.getTexts("ConfigService-ConfigStoreManager");
    const auto arrivalOf = [&](const std::string& name) {
        return std::find_if(lines.begin(), lines.end(),
                            [&](const auto& line) { return line.starts_with("adding new store: " + name + ","); }) -
               lines.begin();
    };
    EXPECT_LT(arrivalOf("Zed"), arrivalOf("PresenceConfigStore"));
}

TEST_F(CachedStoresTest, InPhoneModeThePresenceStoreIsDroppedFromTheRecordAndItsFileStays) {
    givenEarlierRunWith(makeCachingStore("PresenceConfigStore", 30, {{L"k", L"v"}}));
    givenDefaults({{L"ProductMode", L"PHONE_MODE"}});
    load();
    EXPECT_FALSE(inChain("PresenceConfigStore"));
    EXPECT_EQ(record(), L"");
    EXPECT_TRUE(std::filesystem::exists(cacheFile("PresenceConfigStore")));
}

TEST_F(CachedStoresTest, InTheSdkModeNothingIsCopiedOrRestored) {
    givenDefaults({{L"Lumora_SDK_Mode", L"true"}, {L"PrimaryConfigStores", L"A:50;"}});
    loadAndStart();
    adapter->addConfigStore(makeCachingStore("TftpStore", 40, {{L"k", L"v"}}));
    EXPECT_FALSE(inChain("A"));
    EXPECT_FALSE(std::filesystem::exists(cacheFile("TftpStore")));
    EXPECT_EQ(record(), L"A:50;");
    EXPECT_TRUE(inChain("UrlProvisioningConfigStore"));
}

TEST_F(CachedStoresTest, CopyOfAProvisioningUrlIsRestored) {
    loadAndStart();
    adapter->setUrlProvisioningData(L"?ServicesDomain=example.com");
    unload();
    load();
    EXPECT_EQ(valueOf(L"ServicesDomain"), L"example.com");
}

TEST_F(CachedStoresTest, DeviceManagementForbidsTheProvisioningStoreAtARefresh) {
    loadAndStart();
    adapter->setUrlProvisioningData(L"?ServicesDomain=example.com");
    adapter->setMdmConfig("<a><b><AllowUrlProvisioning>FALSE</AllowUrlProvisioning></b></a>");
    adapter->refreshConfigFeatureSet();
    EXPECT_FALSE(inChain("UrlProvisioningConfigStore"));
    EXPECT_FALSE(std::filesystem::exists(cacheFile("UrlProvisioningConfigStore")));
    const std::string line =
        "Url Provisioning not allowed by MDM configuration, removing cached URL provisioning store";
    EXPECT_EQ(countLogged(line), 1);
    EXPECT_EQ(levelOf(line), ZelLogLevel::Info);
}

TEST_F(CachedStoresTest, UnstartedRefreshRefusesToRemoveTheProvisioningStore) {
    load();
    adapter->setUrlProvisioningData(L"?ServicesDomain=example.com");
    adapter->setMdmConfig("<a><b><AllowUrlProvisioning>false</AllowUrlProvisioning></b></a>");
    log.clear();
    adapter->refreshConfigFeatureSet();
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error),
                Contains("Config FeatureSet Not Started, failed to remove ConfigStore with name: "
                         "[UrlProvisioningConfigStore]"));
    EXPECT_TRUE(std::filesystem::exists(cacheFile("UrlProvisioningConfigStore")));
}

TEST_F(CachedStoresTest, OnlyDeviceManagementForbidsTheProvisioningStore) {
    givenDefaults({{L"AllowUrlProvisioning", L"false"}});
    load();
    EXPECT_TRUE(inChain("UrlProvisioningConfigStore"));
}

TEST_F(CachedStoresTest, AnUpdatedStoreIsCopiedAgain) {
    loadAndStart();
    adapter->addConfigStore(makeCachingStore("TftpStore", 40, {{L"k", L"old"}, {L"gone", L"x"}}));
    adapter->updateExistingConfigStore(makeCachingStore("TftpStore", 40, {{L"k", L"new"}}), {L"k", L"gone"});
    EXPECT_EQ(recordOf(L"k"), L"new");
    EXPECT_FALSE(service->getConfig(L"gone")->getisDefined());
    unload();
    load();
    EXPECT_EQ(valueOf(L"k"), L"new");
}

TEST_F(CachedStoresTest, AStoreIsNotUpdatedBeforeTheStart) {
    load();
    adapter->updateExistingConfigStore(makeCachingStore("UrlProvisioningConfigStore", 499, {{L"k", L"v"}}), {});
    EXPECT_EQ(valueOf(L"k"), L"(none)");
}

TEST(CachedStores, RecordGivenAsTextHasItsOwnDefaultPriority) {
    const testing_host::TemporaryProfile profile;
    const testing_host::InMemoryRegistry::Installed registry;
    const auto factory = std::make_shared<testing_host::RecordingFactory>();
    InjectConfigService(factory);
    const auto featureSet = factory->getFeatureSetByType<ConfigFeatureSet>();
    const auto manager = std::make_shared<ConfigStoreManager>(factory);
    CachedStores(*featureSet, manager).addCachedConfigStores(L"A:abc;PresenceConfigStore:7;");
    EXPECT_EQ(manager->getStoreByName("A")->getPriority(), 40);
    EXPECT_EQ(manager->getStoreByName("PresenceConfigStore")->getPriority(), 7);
    factory->Destroy();
}

TEST(CachedStores, WithoutAManagerLogAnErrorAndDoNothing) {
    const testing_host::LogRecorder log;
    ConfigAdapter adapter;
    CachedStores stores(adapter, nullptr);
    stores.InitialiseCachedConfigStores();
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), Contains("configStoreManager is null"));
    stores.updateCacheStorePriority("A", 1);
    stores.removeOldCacheConfigStores(nullptr);
}

} // namespace ZelUnified
