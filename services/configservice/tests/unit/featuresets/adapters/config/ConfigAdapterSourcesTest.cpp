#include "ConfigAdapterFixture.h"

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A writable store that records the keys it was asked to remove.
class WatchedStore final : public ConfigStore {
public:
    bool getValue(const std::wstring&, std::wstring& value) override {
        value.clear();
        return false;
    }
    bool storeValue(const std::wstring&, const std::wstring&) override { return false; }
    std::vector<std::wstring> getKeys() override { return {}; }
    bool removeValue(const std::wstring& key) override {
        removals.push_back(key);
        return false;
    }
    void removeAllValues() override {}
    bool isReadOnly() override { return false; }
    std::string getName() override { return "Watched"; }
    int getPriority() override { return 50; }
    void persistValues() override {}
    void destroy() override {}
    bool isLocal() override { return true; }
    bool waitForStoreReady() override { return true; }

    std::vector<std::wstring> removals;
};

} // namespace

/// Tests the consequences of an arrival among several sources.
class ConfigAdapterSources : public ConfigAdapterFixture {};

TEST_F(ConfigAdapterSources, BothSwitchesRemoveFourServersVoicemailFirstUnderEachOfTheirNames) {
    loadAndStart();
    const auto watched = std::make_shared<WatchedStore>();
    adapter->addConfigStore(watched);
    EXPECT_THAT(watched->removals, IsEmpty());
    adapter->addConfigStore(makeReadOnlyStore(
        "Admin", 100, {{L"Customize_Voicemail_Server", L"false"}, {L"Customize_Phone_Server", L"False"}}));
    EXPECT_THAT(watched->removals, ElementsAre(L"VoicemailPrimaryServer", L"VVM_Mailstore_Server_0",
                                               L"TFTPPrimaryServer", L"TftpServer1", L"CtiServer1", L"CTIPrimaryServer",
                                               L"SabrelServer1", L"DeviceAuthenticationPrimaryServer"));
}

TEST_F(ConfigAdapterSources, ASwitchSetByTheUserIsApplied) {
    loadAndStart();
    adapter->setConfig(L"CtiServer1", L"mine");
    adapter->setConfig(L"Customize_Phone_Server", L"false");
    EXPECT_EQ(valueOf(L"CtiServer1"), L"mine");
    adapter->addConfigStore(makeReadOnlyStore("Any", 100));
    EXPECT_EQ(valueOf(L"CtiServer1"), L"(none)");
}

TEST_F(ConfigAdapterSources, ADeviceManagementPushAppliesNoSwitchAndDerivesNoFlag) {
    givenDefaults({{L"Telephony_Enabled", L"true"}});
    loadAndStart();
    adapter->setConfig(L"CtiServer1", L"mine");
    adapter->setMdmConfig("<a><b><Customize_Phone_Server>false</Customize_Phone_Server></b></a>");
    EXPECT_EQ(valueOf(L"CtiServer1"), L"mine");
    EXPECT_EQ(adapter->getValueFromConfigStore("InMemoryConfigStore", L"Telephony_Enabled"), L"");
    EXPECT_EQ(valueOf(L"PrimaryConfigStores"), L"(none)");
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ConfigAdapterSources, AKeyStaysSensitiveAfterAReset) {
    loadAndStart();
    adapter->setKeySensitive(L"Pin");
    adapter->InvokeResetData(ResetDataOptionEnum::ResetAll);
    EXPECT_TRUE(adapter->isKeySensitive(L"pin"));
    EXPECT_TRUE(adapter->isKeySensitive(L"connectionpassword"));
}

TEST_F(ConfigAdapterSources, ADerivedFlagStaysIfAStoreBehindItSetsTheFlagExplicitly) {
    givenDefaults({{L"Telephony_Enabled", L"false"}});
    loadAndStart();
    adapter->addConfigStore(makeReadOnlyStore("TftpStore", 100, {{L"CtiServer1", L"cti"}}));
    adapter->addConfigStore(makeReadOnlyStore("Behind", 700, {{L"Telephony_Enabled", L"false"}}));
    log.clear();
    adapter->addConfigStore(makeReadOnlyStore("TftpStore", 100, {}));
    EXPECT_EQ(countLogged("Telephony_Enabled explicitly set to 'false' in the 'Behind' config store"), 1);
    EXPECT_EQ(valueOf(L"Telephony_Enabled"), L"true");
}

TEST_F(ConfigAdapterSources, ConstructionLogsItsStoresInDebugLines) {
    const testing_host::LogRecorder debugLog(testing_host::LogRecorder::Debug::On);
    load();
    auto lines = debugLog.getTexts(ZelLogLevel::Debug);
    std::erase_if(lines, [](const auto& line) { return !line.starts_with("adding "); });
    EXPECT_THAT(lines, ElementsAre("adding initial config stores", "adding cached config stores"));
}

TEST_F(ConfigAdapterSources, PhoneModeDropsOnlyThePresenceStoreIgnoringCase) {
    givenDefaults({{L"ProductMode", L"Phone_Mode"},
                   {L"PrimaryConfigStores", L"presenceconfigstore:31;PresenceConfigStore2:32;"}});
    load();
    EXPECT_FALSE(inChain("PresenceConfigStore"));
    EXPECT_TRUE(inChain("PresenceConfigStore2"));
    EXPECT_EQ(valueOf(L"PrimaryConfigStores"), L"PresenceConfigStore2:32;");
}

TEST_F(ConfigAdapterSources, PhoneModeInARestoredCopyDropsThePresenceStore) {
    loadAndStart();
    adapter->addConfigStore(makeCachingStore("Zed", 40, {{L"ProductMode", L"Phone_Mode"}}));
    adapter->addConfigStore(makeCachingStore("PresenceConfigStore", 30));
    unload();
    load();
    EXPECT_FALSE(inChain("PresenceConfigStore"));
}

TEST_F(ConfigAdapterSources, AnEntryWithAnEmptyPriorityIsRestoredWithPriority240) {
    givenDefaults({{L"PrimaryConfigStores", L"A:;"}});
    load();
    ASSERT_TRUE(inChain("A"));
    EXPECT_EQ(adapter->getConfigStoreByName("A")->getPriority(), 240);
}

TEST_F(ConfigAdapterSources, AListedKeyWithoutAValueIsNotCopied) {
    loadAndStart();
    const auto store = makeCachingStore("Reluctant", 40, {{L"answered", L"v"}, {L"unanswered", L""}});
    store->unanswered.insert(L"unanswered");
    adapter->addConfigStore(store);
    unload();
    load();
    EXPECT_THAT(adapter->getConfigStoreByName("Reluctant")->getKeys(), ElementsAre(L"answered"));
}

TEST_F(ConfigAdapterSources, ARecordThatNoStoreAcceptsIsDroppedWithoutAnError) {
    givenDefaults({{L"PrimaryConfigStores", L"A:50;"}});
    loadAndStart();
    adapter->removeConfigStore("LocalFileConfigStore");
    log.clear();
    adapter->addConfigStore(makeCachingStore("TftpStore", 40, {{L"k", L"v"}}));
    EXPECT_EQ(valueOf(L"PrimaryConfigStores"), L"A:50;");
    EXPECT_TRUE(std::filesystem::exists(cacheFile("TftpStore")));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), IsEmpty());
}

TEST_F(ConfigAdapterSources, AFileWithAnUppercaseExtensionRemovesNoStore) {
    loadAndStart();
    testing_host::writeFile(profile.config() / "Cache" / "cachedA.DAT", "x");
    testing_host::writeFile(profile.config() / "Cache" / "cachedB.dat", "x");
    adapter->addConfigStore(makeReadOnlyStore("cachedA.xml", 100));
    adapter->addConfigStore(makeReadOnlyStore("cachedB.xml", 100));
    adapter->removeAllCachedConfigStores();
    EXPECT_TRUE(inChain("cachedA.xml"));
    EXPECT_FALSE(inChain("cachedB.xml"));
}

} // namespace ZelUnified
