#include "ConfigAdapterFixture.h"

namespace ZelUnified {

using testing::Contains;
using testing::ElementsAre;

/// The shipped defaults contain the three flags, without which none is derived.
class EnabledServicesTest : public ConfigAdapterFixture {
protected:
    void givenDefaultFlags(ConfigMap others = {}) {
        others.insert(
            {{L"Telephony_Enabled", L"true"}, {L"Voicemail_Enabled", L"true"}, {L"Meetings_Enabled", L"true"}});
        givenDefaults(others);
    }
    /// Adds a store of these keys under a name that makes the service derive the flags.
    void arrive(const ConfigMap& values) {
        log.clear();
        adapter->addConfigStore(makeReadOnlyStore("TftpConfigStore", 100, values));
    }
    std::wstring derived(const std::wstring& flag) {
        return adapter->getValueFromConfigStore("InMemoryConfigStore", flag);
    }
};

TEST_F(EnabledServicesTest, ConfiguredServersEnableTheirServices) {
    givenDefaultFlags();
    loadAndStart();
    arrive({{L"CtiServer1", L"cti"}, {L"Meeting_Server_Address", L"meet"}});
    EXPECT_EQ(derived(L"Telephony_Enabled"), L"true");
    EXPECT_EQ(derived(L"Voicemail_Enabled"), L"false");
    EXPECT_EQ(derived(L"Meetings_Enabled"), L"true");
    EXPECT_THAT(logged(), ElementsAre("Setting telephonyEnabled flag: 1", "Setting voicemailEnabled flag:0",
                                      "Setting Meetings_Enabled flag: 1"));
    EXPECT_EQ(levelOf("Setting Meetings_Enabled flag: 1"), ZelLogLevel::Info);
    EXPECT_EQ(recordOf(L"Voicemail_Enabled"), L"false");
}

TEST_F(EnabledServicesTest, EitherServerKeyIsEnoughUnderAnyOfItsNames) {
    givenDefaultFlags();
    loadAndStart();
    arrive({{L"DeviceAuthenticationPrimaryServer", L"devices"}, {L"VVM_Mailstore_Server_0", L"mail"}});
    EXPECT_EQ(derived(L"Telephony_Enabled"), L"true");
    EXPECT_EQ(derived(L"Voicemail_Enabled"), L"true");
}

TEST_F(EnabledServicesTest, EmptyServersDoNotCount) {
    givenDefaultFlags();
    loadAndStart();
    arrive({{L"CtiServer1", L""}});
    EXPECT_EQ(derived(L"Telephony_Enabled"), L"false");
}

TEST_F(EnabledServicesTest, TheLogHidesAFlagThatIsMarkedSensitive) {
    givenDefaultFlags();
    givenPolicy(L"Telephony_Enabled", L"jane@example.com");
    loadAndStart();
    adapter->setKeySensitive(L"TELEPHONY_ENABLED");
    arrive({{L"CtiServer1", L"cti"}});
    EXPECT_THAT(logged(), Contains("Telephony_Enabled explicitly set to 'VALUE_HIDDEN' in the 'RegistryConfigStore' "
                                   "config store"));
}

TEST_F(EnabledServicesTest, TheAdministratorsValuePreventsTheDerivation) {
    givenDefaultFlags();
    givenPolicy(L"Telephony_Enabled", L"false");
    loadAndStart();
    arrive({{L"CtiServer1", L"cti"}});
    EXPECT_EQ(valueOf(L"Telephony_Enabled"), L"false");
    EXPECT_EQ(derived(L"Telephony_Enabled"), L"");
    EXPECT_EQ(levelOf("Telephony_Enabled explicitly set to 'false' in the 'RegistryConfigStore' config store"),
              ZelLogLevel::Info);
}

TEST_F(EnabledServicesTest, WithoutADefaultNoFlagIsDerived) {
    loadAndStart();
    arrive({{L"CtiServer1", L"cti"}});
    EXPECT_EQ(derived(L"Telephony_Enabled"), L"");
    EXPECT_THAT(logged(), ElementsAre("Telephony_Enabled explicitly set to '' in the '' config store",
                                      "Voicemail_Enabled explicitly set to '' in the '' config store",
                                      "Meetings_Enabled explicitly set to '' in the '' config store"));
}

TEST_F(EnabledServicesTest, UsersValueDoesNotStopTheDerivationAndIsStillInForce) {
    givenDefaultFlags();
    loadAndStart();
    adapter->setConfig(L"Telephony_Enabled", L"false");
    arrive({{L"CtiServer1", L"cti"}});
    EXPECT_EQ(derived(L"Telephony_Enabled"), L"true");
    EXPECT_EQ(valueOf(L"Telephony_Enabled"), L"false");
}

TEST_F(EnabledServicesTest, MeetingServersAreCheckedInOrder) {
    const std::vector<std::pair<ConfigMap, std::wstring>> cases{
        {{{L"Meeting_Server_Address", L"a"}}, L"true"},
        {{{L"Meeting_Server_Address", L"a"}, {L"Meeting_Server_Type", L"MIRROX"}}, L"true"},
        {{{L"Meeting_Server_Address", L"a"}, {L"Meeting_Server_Type", L"Other"}}, L"false"},
        {{{L"Meeting_Server_Type", L"Mirrox"}}, L"false"},
        {{{L"Meeting_Server_Address", L"a"},
          {L"Meeting_Server_Type", L"Other"},
          {L"Meeting_Server_Address_Backup2", L"c"}},
         L"true"},
        {{{L"Meeting_Server_Address_Backup", L"b"}, {L"Meeting_Server_Type_Backup", L"Mirrox"}}, L"true"},
    };
    givenDefaultFlags();
    loadAndStart();
    for (const auto& [servers, expected] : cases) {
        arrive(servers);
        EXPECT_EQ(derived(L"Meetings_Enabled"), expected);
    }
}

TEST_F(EnabledServicesTest, OnlyStoresWhoseNameStartsWithAKnownOneStartTheDerivation) {
    givenDefaultFlags();
    loadAndStart();
    for (const auto* name : {"BrindleConfigStore", "MyGarnStore"}) {
        adapter->addConfigStore(makeReadOnlyStore(name, 100, {{L"CtiServer1", L"cti"}}));
        EXPECT_EQ(derived(L"Telephony_Enabled"), L"") << name;
    }
    for (const auto* name : {"GarnStore", "presenceconfigstore", "TFTPConfigStore", "TaviLyncRegistryConfigStore"}) {
        adapter->setInMemoryConfig(L"Telephony_Enabled", L"");
        adapter->addConfigStore(makeReadOnlyStore(name, 100));
        EXPECT_EQ(derived(L"Telephony_Enabled"), L"true") << name;
    }
}

TEST_F(EnabledServicesTest, WithoutCopiesConstructionDerivesNothing) {
    givenDefaultFlags({{L"CtiServer1", L"cti"}});
    load();
    EXPECT_EQ(derived(L"Telephony_Enabled"), L"");
}

TEST_F(EnabledServicesTest, ACopyOfAServersStoreStartsTheDerivationAtConstructionAndRefresh) {
    givenDefaultFlags({{L"CtiServer1", L"cti"}});
    testing_host::writeFile(cacheFile("TftpConfigStore"), "x");
    load();
    EXPECT_EQ(derived(L"Telephony_Enabled"), L"true");
    EXPECT_EQ(countLogged("Setting telephonyEnabled flag: 1"), 1);
    start();
    adapter->setConfig(L"CtiServer1", L"");
    adapter->refreshConfigFeatureSet();
    EXPECT_EQ(derived(L"Telephony_Enabled"), L"true");
}

TEST_F(EnabledServicesTest, ACopyIsRecognisedByItsNameAndExtension) {
    for (const auto* name : {"TftpConfigStore.dat", "xcachedTftpConfigStore.dat", "cachedTftpConfigStore.xml"}) {
        testing_host::writeFile(profile.config() / "Cache" / name, "x");
    }
    EXPECT_FALSE(EnabledServices::shouldSetEnabledServicesBasedOnCachedStores());
    testing_host::writeFile(profile.config() / "Cache" / "old" / "CACHEDpresenceconfigstore.dat", "x");
    EXPECT_TRUE(EnabledServices::shouldSetEnabledServicesBasedOnCachedStores());
}

TEST_F(EnabledServicesTest, AreDerivedOnRequest) {
    givenDefaultFlags({{L"CtiServer1", L"cti"}});
    loadAndStart();
    adapter->SetEnabledServices();
    EXPECT_EQ(derived(L"Telephony_Enabled"), L"true");
    EXPECT_EQ(countLogged("Setting telephonyEnabled flag: 1"), 1);
}

} // namespace ZelUnified
