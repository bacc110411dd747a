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

TEST_F(RegistryConfigStoreTest, KeysMatchIgnoringCaseAndKeepTheFirstSpelling) {
    setText(L"", L"SomeKey", L"value");
    setText(L"\\Sub", L"SOMEKEY", L"hidden");
    EXPECT_EQ(readBack(L"somekey"), L"value");
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"SomeKey"));
}

TEST_F(RegistryConfigStoreTest, KeysAreListedInCaseInsensitiveOrder) {
    setText(L"", L"zebra", L"1");
    setText(L"", L"Banana", L"2");
    setText(L"", L"apple", L"3");
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"apple", L"Banana", L"zebra"));
}

TEST_F(RegistryConfigStoreTest, TextsEndAtTheirFirstTerminatorOrAtTheirSize) {
    setRaw(L"terminated", REG_SZ, {'a', 0, 0, 0, 'b', 0});
    setRaw(L"unterminated", REG_SZ, {'a', 0, 'b', 0});
    setRaw(L"odd", REG_SZ, {'a', 0, 'b'});
    setRaw(L"single", REG_SZ, {'a'});
    setRaw(L"long first", REG_SZ, encodeRegistryText(std::wstring(1000, L'x')));
    setRaw(L"short", REG_SZ, {'y', 0});
    EXPECT_EQ(readBack(L"terminated"), L"a");
    EXPECT_EQ(readBack(L"unterminated"), L"ab");
    EXPECT_EQ(readBack(L"odd"), L"a");
    EXPECT_EQ(readBack(L"single"), L"");
    EXPECT_EQ(readBack(L"short"), L"y");
}

TEST_F(RegistryConfigStoreTest, AnEmptyTextIsAHit) {
    setText(L"", L"Empty", L"");
    setRaw(L"No data", REG_SZ, {});
    EXPECT_EQ(readBack(L"Empty"), L"");
    EXPECT_EQ(readBack(L"No data"), L"");
}

TEST_F(RegistryConfigStoreTest, ExpandableTextsAreNotExpanded) {
    setRaw(L"Path", REG_EXPAND_SZ, encodeRegistryText(L"%HOME%\\x"));
    EXPECT_EQ(readBack(L"Path"), L"%HOME%\\x");
}

TEST_F(RegistryConfigStoreTest, TheFirstTextOfAListIsTheValue) {
    setRaw(L"List", REG_MULTI_SZ, {'o', 0, 'n', 0, 'e', 0, 0, 0, 't', 0, 'w', 0, 'o', 0, 0, 0, 0, 0});
    EXPECT_EQ(readBack(L"List"), L"one");
}

TEST_F(RegistryConfigStoreTest, NumbersAreUnsignedDecimalText) {
    registry->setNumber(HKEY_CURRENT_USER, root, L"Zero", 0);
    registry->setNumber(HKEY_CURRENT_USER, root, L"Many", 0xFFFFFFFF);
    setRaw(L"Short", REG_DWORD, {1, 1});
    setRaw(L"Long", REG_DWORD, {2, 0, 0, 0, 1});
    EXPECT_EQ(readBack(L"Zero"), L"0");
    EXPECT_EQ(readBack(L"Many"), L"4294967295");
    EXPECT_EQ(readBack(L"Short"), L"257");
    EXPECT_EQ(readBack(L"Long"), L"2");
}

TEST_F(RegistryConfigStoreTest, ValuesOfOtherTypesAreSkipped) {
    setRaw(L"Binary", REG_BINARY, {1, 2, 3});
    setRaw(L"Big number", REG_QWORD, {1, 0, 0, 0, 0, 0, 0, 0});
    setRaw(L"None", REG_NONE, {});
    setRaw(L"Unknown", 99, {1});
    setText(L"", L"Last", L"value");
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"Last"));
}

TEST_F(RegistryConfigStoreTest, TheDefaultValueOfAKeyHasTheEmptyKey) {
    setText(L"", L"", L"default");
    EXPECT_EQ(readBack(L""), L"default");
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L""));
}

TEST_F(RegistryConfigStoreTest, AValueOfMoreThan4096BytesHidesThoseBehindIt) {
    setText(L"", L"Before", L"1");
    setRaw(L"Fits", REG_SZ, std::vector<std::uint8_t>(4096, 'x'));
    setRaw(L"Too long", REG_SZ, std::vector<std::uint8_t>(4097, 'x'));
    setText(L"", L"Behind", L"2");
    setText(L"\\Sub", L"In a subkey", L"3");
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"Before", L"Fits", L"In a subkey"));
    EXPECT_EQ(readBack(L"Fits")->size(), 2048U);
}

TEST_F(RegistryConfigStoreTest, AValueNameOf260CharactersHidesThoseBehindIt) {
    const std::wstring longest(259, L'n');
    setText(L"", longest, L"1");
    setText(L"", longest + L'n', L"2");
    setText(L"", L"Behind", L"3");
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(longest));
}

TEST_F(RegistryConfigStoreTest, AKeyOverridesItsSubkeysAndALowerIndexAHigherOne) {
    setText(L"", L"InAll", L"root");
    setText(L"\\Alpha", L"InAll", L"alpha");
    setText(L"\\Alpha", L"InSubkeys", L"alpha");
    setText(L"\\Alpha\\Deep", L"InDeep", L"alpha deep");
    setText(L"\\Beta", L"InSubkeys", L"beta");
    setText(L"\\Beta", L"InDeep", L"beta");
    EXPECT_EQ(readBack(L"InAll"), L"root");
    EXPECT_EQ(readBack(L"InSubkeys"), L"alpha");
    EXPECT_EQ(readBack(L"InDeep"), L"alpha deep");
}

TEST_F(RegistryConfigStoreTest, AllSubkeysOfTheRootAreRead) {
    for (const auto* name : {L"a", L"b", L"c", L"d"}) {
        setText(std::wstring(L"\\") + name, name, L"1");
    }
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"a", L"b", L"c", L"d"));
}

TEST_F(RegistryConfigStoreTest, ASubkeyIsReadOnlyAsFarAsItsParentHasSubkeys) {
    // The root has two subkeys: two of the three below "A" are read, and below "A\1" as many as "A" has.
    for (const auto* name : {L"\\A\\1\\w", L"\\A\\1\\x", L"\\A\\1\\y", L"\\A\\1\\z", L"\\A\\2", L"\\A\\3", L"\\B"}) {
        setText(name, std::wstring(name).substr(1), L"1");
    }
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"A\\1\\w", L"A\\1\\x", L"A\\1\\y", L"A\\2", L"B"));
}

TEST_F(RegistryConfigStoreTest, AnIndexThatFailsIsSkipped) {
    setText(L"\\A", L"a", L"1");
    setText(L"\\B", L"b", L"1");
    setText(L"\\C", L"c", L"1");
    registry->failEnumerating(1);
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"a", L"c"));
}

TEST_F(RegistryConfigStoreTest, ASubkeyNameOf255CharactersIsSkipped) {
    setText(L"\\" + std::wstring(255, L'k'), L"too long", L"1");
    setText(L"\\" + std::wstring(254, L'k'), L"fits", L"1");
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"fits"));
}

TEST_F(RegistryConfigStoreTest, ASubkeyThatCannotBeOpenedIsSkipped) {
    setText(L"\\A", L"a", L"1");
    setText(L"\\B", L"b", L"1");
    registry->failOpening(root + L"\\A", RegistryResult::AccessDenied);
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"b"));
}

TEST_F(RegistryConfigStoreTest, PathsThatDoNotFitTheBufferAreNotTruncatedAndOpened) {
    std::wstring deep;
    while (root.size() + deep.size() + 201 < 1023) {
        deep += L"\\" + std::wstring(200, L'd');
    }
    const auto room = 1023 - root.size() - deep.size() - 1;
    const std::wstring fits(room, L'f');
    setText(deep + L"\\" + fits, L"fits", L"1");
    setText(deep + L"\\" + fits + L"f", L"does not fit", L"1");
    // Adds enough keys at the levels above, so that the read reaches the second of the two.
    setText(L"\\z", L"other", L"1");
    for (std::size_t end = 201; end < deep.size(); end += 201) {
        setText(deep.substr(0, end) + L"\\z", L"other", L"1");
    }
    EXPECT_THAT(makeStore().getKeys(), ElementsAre(L"fits", L"other"));
    for (const auto& opened : registry->getOpened()) {
        EXPECT_LE(opened.path.size(), 1023U);
    }
}

TEST_F(RegistryConfigStoreTest, EveryKeyThatWasOpenedIsClosed) {
    setText(L"\\A\\B", L"a", L"1");
    setText(L"\\C", L"b", L"1");
    makeStore();
    EXPECT_EQ(registry->getOpenKeyCount(), 0U);
    EXPECT_EQ(registry->getClosed().size(), registry->getOpened().size());
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
