#include "ConfigAdapterFixture.h"
#include "StepwiseServicesDispatcher.h"

#include <ConfigCatalogue.h>

namespace ZelUnified {

using testing::ElementsAre;

namespace {

/// Records the keys of the observed records whose values change.
class KeyRecorder final : public ConfigValueObserver {
public:
    KeyRecorder(std::wstring followedKey, std::vector<std::wstring>& changedKeys)
        : key(std::move(followedKey)), changed(changedKeys) {}
    void OnKeyChanged() override {}
    void OnValueChanged() override { changed.push_back(key); }
    void OnOriginalValueChanged() override {}
    void OnisOverriddenChanged() override {}
    void OnisDefinedChanged() override {}
    void OnValueStoreNameChanged() override {}
    void OnOriginalValueStoreNameChanged() override {}

private:
    const std::wstring key;
    std::vector<std::wstring>& changed;
};

} // namespace

class ConfigAdapterPolicy : public ConfigAdapterFixture {
protected:
    void givenUsersServers() {
        for (const auto* key : {L"VoicemailPrimaryServer", L"TFTPPrimaryServer", L"CtiServer1", L"SabrelServer1"}) {
            adapter->setConfig(key, L"mine");
        }
    }
};

TEST_F(ConfigAdapterPolicy, NineKeysAreSensitiveAtFirst) {
    load();
    for (const auto* key : {L"Initial_Info", L"Addtional_Info", L"connectionpassword", L"connectionusername",
                            L"BDIConnectionPassword", L"BDIConnectionUsername", L"BDIConnectionUserDn",
                            L"Mrx_MeetingList_OfflineData", L"Mrx_MeetingList_OnlineData"}) {
        EXPECT_TRUE(adapter->isKeySensitive(key));
        EXPECT_TRUE(service->isKeySensitive(key));
    }
    EXPECT_TRUE(adapter->isKeySensitive(L"CONNECTIONPASSWORD"));
    EXPECT_FALSE(adapter->isKeySensitive(L"Additional_Info"));
}

TEST_F(ConfigAdapterPolicy, KeysAreSensitiveUnderBothNamesAsTheCatalogueDefines) {
    load();
    for (const auto& row : ConfigKeys::keys) {
        const std::wstring name(row.name);
        EXPECT_EQ(adapter->isKeySensitive(name), row.sensitive != 0) << KyrCoreUtils::toString(name);
        if (row.isRenamed()) {
            EXPECT_EQ(adapter->isKeySensitive(std::wstring(row.oldName)), row.sensitive != 0)
                << KyrCoreUtils::toString(row.oldName);
        }
    }
}

TEST_F(ConfigAdapterPolicy, SensitiveKeysAreMarkedInTheirOrder) {
    const auto stepwise = std::make_shared<StepwiseFactory>();
    factory = stepwise;
    stepwise->dispatcher->access = false;
    load();
    EXPECT_EQ(stepwise->dispatcher->step(), "ConfigServiceImpl::setupConfigKeyAliases");
    for (const auto* key : {L"Initial_Info", L"Addtional_Info", L"connectionpassword", L"connectionusername",
                            L"BDIConnectionPassword", L"BDIConnectionUsername", L"BDIConnectionUserDn",
                            L"Mrx_MeetingList_OfflineData", L"Mrx_MeetingList_OnlineData"}) {
        EXPECT_FALSE(service->isKeySensitive(key));
        EXPECT_EQ(stepwise->dispatcher->step(), "ConfigServiceImpl::OnConfigChanged");
        EXPECT_TRUE(service->isKeySensitive(key));
    }
    while (!stepwise->dispatcher->posted.empty()) {
        stepwise->dispatcher->step();
    }
}

TEST_F(ConfigAdapterPolicy, AKeyMarkedAsSensitiveIsSensitiveInTheService) {
    loadAndStart();
    service->setKeySensitive(L"Secret");
    EXPECT_TRUE(adapter->isKeySensitive(L"secret"));
    EXPECT_TRUE(service->isKeySensitive(L"secret"));
}

TEST_F(ConfigAdapterPolicy, AbsentSwitchesRemoveNothing) {
    loadAndStart();
    givenUsersServers();
    adapter->addConfigStore(makeReadOnlyStore("S", 100, {{L"Customize_Phone_Server", L"no"}}));
    EXPECT_EQ(valueOf(L"CtiServer1"), L"mine");
}

TEST_F(ConfigAdapterPolicy, AddingAStoreWithTheSwitchesRemovesTheUsersServers) {
    loadAndStart();
    givenUsersServers();
    adapter->addConfigStore(makeReadOnlyStore("Admin", 100,
                                              {{L"Customize_Voicemail_Server", L"FALSE"},
                                               {L"Customize_Phone_Server", L"false"},
                                               {L"CTIPrimaryServer", L"admin"}}));
    EXPECT_EQ(valueOf(L"VoicemailPrimaryServer"), L"(none)");
    EXPECT_EQ(valueOf(L"TFTPPrimaryServer"), L"(none)");
    EXPECT_EQ(valueOf(L"SabrelServer1"), L"(none)");
    EXPECT_EQ(valueOf(L"CtiServer1"), L"admin");
}

TEST_F(ConfigAdapterPolicy, ServersAreRemovedInOrderStartingWithTheVoicemailServer) {
    loadAndStart();
    givenUsersServers();
    std::vector<std::wstring> changed;
    std::vector<std::shared_ptr<KeyRecorder>> recorders;
    for (const auto* key :
         {L"DeviceAuthenticationPrimaryServer", L"CTIPrimaryServer", L"TFTPPrimaryServer", L"VoicemailPrimaryServer"}) {
        recorders.push_back(std::make_shared<KeyRecorder>(key, changed));
        service->getConfig(key)->addObserver(std::weak_ptr<ConfigValueObserver>(recorders.back()));
    }
    adapter->addConfigStore(makeReadOnlyStore(
        "Admin", 100, {{L"Customize_Voicemail_Server", L"false"}, {L"Customize_Phone_Server", L"false"}}));
    EXPECT_THAT(changed, ElementsAre(L"VoicemailPrimaryServer", L"TFTPPrimaryServer", L"CTIPrimaryServer",
                                     L"DeviceAuthenticationPrimaryServer"));
}

TEST_F(ConfigAdapterPolicy, ASwitchRemovesOnlyItsServers) {
    loadAndStart();
    givenUsersServers();
    adapter->addConfigStore(makeReadOnlyStore("Admin", 100, {{L"Customize_Voicemail_Server", L"false"}}));
    EXPECT_EQ(valueOf(L"VoicemailPrimaryServer"), L"(none)");
    EXPECT_EQ(valueOf(L"CtiServer1"), L"mine");
}

TEST_F(ConfigAdapterPolicy, SwitchesAreAppliedAtConstructionAndRefresh) {
    loadAndStart();
    givenUsersServers();
    unload();
    givenPolicy(L"Customize_Phone_Server", L"false");
    load();
    EXPECT_EQ(valueOf(L"CtiServer1"), L"(none)");
    start();
    adapter->setConfig(L"CtiServer1", L"again");
    factory->backgroundDispatcher->runAll();
    adapter->refreshConfigFeatureSet();
    EXPECT_EQ(valueOf(L"CtiServer1"), L"(none)");
}

TEST_F(ConfigAdapterPolicy, AddingAStoreDerivesTheFlagsAfterRemovingTheServers) {
    givenDefaults({{L"Telephony_Enabled", L"true"}});
    loadAndStart();
    adapter->setConfig(L"CtiServer1", L"mine");
    adapter->addConfigStore(makeReadOnlyStore("TftpConfigStore", 100, {{L"Customize_Phone_Server", L"false"}}));
    EXPECT_EQ(adapter->getValueFromConfigStore("InMemoryConfigStore", L"Telephony_Enabled"), L"false");
}

TEST_F(ConfigAdapterPolicy, ConstructionDerivesTheFlagsAfterRemovingTheServers) {
    givenDefaults({{L"Telephony_Enabled", L"true"}});
    loadAndStart();
    adapter->setConfig(L"CtiServer1", L"mine");
    unload();
    testing_host::writeFile(cacheFile("TftpConfigStore"), "x");
    givenPolicy(L"Customize_Phone_Server", L"false");
    load();
    EXPECT_EQ(valueOf(L"CtiServer1"), L"(none)");
    EXPECT_EQ(adapter->getValueFromConfigStore("InMemoryConfigStore", L"Telephony_Enabled"), L"false");
}

TEST_F(ConfigAdapterPolicy, RefreshDerivesTheFlagsBeforeRemovingTheServers) {
    givenDefaults({{L"Telephony_Enabled", L"false"}});
    loadAndStart();
    adapter->setConfig(L"CtiServer1", L"mine");
    factory->backgroundDispatcher->runAll();
    testing_host::writeFile(cacheFile("TftpConfigStore"), "x");
    givenPolicy(L"Customize_Phone_Server", L"false");
    adapter->refreshConfigFeatureSet();
    EXPECT_EQ(valueOf(L"CtiServer1"), L"(none)");
    EXPECT_EQ(adapter->getValueFromConfigStore("InMemoryConfigStore", L"Telephony_Enabled"), L"true");
}

TEST_F(ConfigAdapterPolicy, TheValueOfOneStoreIsReturned) {
    givenDefaults({{L"k", L"default"}});
    loadAndStart();
    adapter->setConfig(L"k", L"mine");
    EXPECT_EQ(adapter->getValueFromConfigStore("lumora-config-defaults.xml", L"k"), L"default");
    EXPECT_EQ(adapter->getValueFromConfigStore("RegistryConfigStore", L"k"), L"");
}

} // namespace ZelUnified
