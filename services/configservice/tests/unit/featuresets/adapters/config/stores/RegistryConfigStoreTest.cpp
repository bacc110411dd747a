#include "RegistryConfigStoreFixture.h"

#include <registry/RegistryFiles.h>
#include <zel/FipsUtils.h>

#include <ConfigKeys.h>
#include <LogRecorder.h>
#include <gmock/gmock.h>

#include <limits>

namespace ZelUnified {

using namespace zel::registry;
using testing::ElementsAre;
using testing::IsEmpty;
using testing_host::LogRecorder;
using testing_host::writeFile;

TEST_F(RegistryConfigStoreTest, IsReadOnlyAndNotLocal) {
    setText(L"", L"Key", L"value");
    RegistryConfigStore store(nullptr, "Some name", -7, "Policies\\Client");
    EXPECT_EQ(store.getName(), "Some name");
    EXPECT_EQ(store.getPriority(), -7);
    EXPECT_TRUE(store.isReadOnly());
    EXPECT_FALSE(store.isLocal());
    EXPECT_TRUE(store.waitForStoreReady());
    EXPECT_FALSE(store.shouldCacheConfigStore());
    EXPECT_EQ(store.getCachedPriority(), -6);
}

TEST_F(RegistryConfigStoreTest, RefusesWrites) {
    setText(L"", L"Key", L"value");
    auto store = makeStore();
    EXPECT_FALSE(store.storeValue(L"Key", L"other"));
    EXPECT_FALSE(store.storeValue(L"New", L"other"));
    EXPECT_FALSE(store.removeValue(L"Key"));
    store.removeAllValues();
    store.persistValues();
    store.destroy();
    store.onRegistryChanged();
    EXPECT_THAT(store.getKeys(), ElementsAre(L"Key"));
    std::wstring value;
    EXPECT_TRUE(store.getValue(L"key", value));
    EXPECT_EQ(value, L"value");
}

TEST_F(RegistryConfigStoreTest, OpensTheKeyBelowSoftwareForReading) {
    setText(L"", L"Key", L"value");
    makeStore();
    ASSERT_EQ(registry->getOpened().size(), 1U);
    EXPECT_EQ(registry->getOpened()[0].root, HKEY_CURRENT_USER);
    EXPECT_EQ(registry->getOpened()[0].path, root);
    EXPECT_EQ(registry->getOpened()[0].options, 0U);
    EXPECT_EQ(registry->getOpened()[0].access, 131097U);
}

TEST_F(RegistryConfigStoreTest, ReadsThePolicyKey) {
    registry->setText(HKEY_CURRENT_USER,
                      L"Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC", L"Key",
                      L"value");
    RegistryConfigStore store(nullptr, "RegistryConfigStore", 30, std::string(ConfigKeys::policyRegistryPath));
    EXPECT_THAT(store.getKeys(), ElementsAre(L"Key"));
}

TEST_F(RegistryConfigStoreTest, NeverLooksUnderTheMachinesRoot) {
    registry->setText(HKEY_LOCAL_MACHINE, root, L"Key", L"value");
    EXPECT_THAT(makeStore().getKeys(), IsEmpty());
}

TEST_F(RegistryConfigStoreTest, KeysAreListedInCaseInsensitiveOrder) {
    setText(L"", L"zebra", L"1");
    setText(L"", L"Banana", L"2");
    setText(L"", L"apple", L"3");
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"apple", L"Banana", L"zebra"));
}

TEST_F(RegistryConfigStoreTest, AMissingKeyMakesAnEmptyStoreWithoutALine) {
    LogRecorder log;
    EXPECT_THAT(makeStore().getKeys(), IsEmpty());
    EXPECT_THAT(log.getRecords(), IsEmpty());
}

TEST_F(RegistryConfigStoreTest, AnOpenedKeyWithoutAHandleMakesAnEmptyStoreWithoutALine) {
    setText(L"", L"Key", L"value");
    registry->failOpening(root, RegistryResult::Success);
    LogRecorder log;
    EXPECT_THAT(makeStore().getKeys(), IsEmpty());
    EXPECT_THAT(log.getRecords(), IsEmpty());
    EXPECT_THAT(registry->getClosed(), IsEmpty());
}

TEST_F(RegistryConfigStoreTest, TheCertificateSwitchIsListedAndNeverReturned) {
    setText(L"", L"CERTIFICATEValidationEnabled", L"true");
    EXPECT_EQ(readBack(L"CertificateValidationEnabled"), std::nullopt);
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"CERTIFICATEValidationEnabled"));
}

TEST_F(RegistryConfigStoreTest, FipsModeForcesTheKeyOnAHitOnly) {
    zel::common::FipsUtils::overrideFipsMode(true);
    EXPECT_EQ(readBack(L"telephony_p2p_enabled"), std::nullopt);
    setText(L"", L"Telephony_P2P_Enabled", L"true");
    EXPECT_EQ(readBack(L"telephony_p2p_enabled"), L"false");
    zel::common::FipsUtils::overrideFipsMode(false);
    EXPECT_EQ(readBack(L"telephony_p2p_enabled"), L"true");
    zel::common::FipsUtils::overrideFipsMode(std::nullopt);
}

TEST_F(RegistryConfigStoreTest, ALaterChangeOfTheRegistryIsReadByANewStoreOnly) {
    setText(L"", L"Key", L"old");
    auto store = makeStore();
    setText(L"", L"Key", L"new");
    std::wstring value;
    EXPECT_TRUE(store.getValue(L"Key", value));
    EXPECT_EQ(value, L"old");
    EXPECT_EQ(readBack(L"Key"), L"new");
}

TEST_F(RegistryConfigStoreTest, ReadsPolicyFilesAsAdministratorsExportThem) {
    const auto text = encodeRegistryText(L"Windows Registry Editor Version 5.00\r\n"
                                         L"\r\n"
                                         L"; for all branches\r\n"
                                         L"[HKEY_CURRENT_USER\\Software\\Policies\\Client]\r\n"
                                         L"\"ServicesDomain\"=\"example.com\"\r\n"
                                         L"\"Ports\"=dword:00001f90\r\n"
                                         L"\"Hosts\"=hex(7):6f,00,6e,00,65,00,00,00,74,\\\r\n"
                                         L"  00,77,00,6f,00,00,00,00,00\r\n"
                                         L"\"Gone\"=\"1\"\r\n"
                                         L"\"Gone\"=-\r\n"
                                         L"\"Blob\"=hex:de,ad\r\n"
                                         L"\r\n"
                                         L"[HKEY_CURRENT_USER\\Software\\Policies\\Client\\Sub]\r\n"
                                         L"\"InSub\"=\"2\"\r\n"
                                         L"[HKEY_CURRENT_USER\\Software\\Policies\\Client\\Old]\r\n"
                                         L"\"InOld\"=\"3\"\r\n"
                                         L"[-HKEY_CURRENT_USER\\Software\\Policies\\Client\\Old]\r\n");
    writeFile(profile.root() / "etc/HKEY_CURRENT_USER/policy.reg",
              "\xFF\xFE" + std::string(text.begin(), text.end() - 2));
    overrideRegistry(makeFileRegistry({(profile.root() / "etc").string(), {}}));
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"Hosts", L"InSub", L"Ports", L"ServicesDomain"));
    EXPECT_EQ(readBack(L"Hosts"), L"one");
    EXPECT_EQ(readBack(L"Ports"), L"8080");
}

TEST_F(RegistryConfigStoreTest, AHundredThousandValuesAreHeld) {
    std::string lines = "REGEDIT4\n[HKEY_CURRENT_USER\\Software\\Policies\\Client]\n";
    for (int i = 0; i < 100000; ++i) {
        lines += "\"Key" + std::to_string(i) + "\"=\"" + std::to_string(i) + "\"\n";
    }
    writeFile(profile.data() / "registry/big.reg", lines);
    overrideRegistry(makeFileRegistry({(profile.root() / "none").string(), {}}));
    auto store = makeStore();
    EXPECT_EQ(store.getKeys().size(), 100000U);
    std::wstring value;
    EXPECT_TRUE(store.getValue(L"key99999", value));
    EXPECT_EQ(value, L"99999");
}

} // namespace ZelUnified
