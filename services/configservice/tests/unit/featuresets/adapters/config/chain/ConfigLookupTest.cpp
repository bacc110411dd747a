#include "ConfigLookupFixture.h"

namespace ZelUnified {

class ConfigLookupTest : public ConfigLookupFixture {};

TEST_F(ConfigLookupTest, WithoutStoresNothingIsFound) {
    const auto answer = ask(L"k");
    EXPECT_FALSE(answer.found);
    EXPECT_EQ(answer.value, L"");
    EXPECT_EQ(answer.storeName, L"before");
}

TEST_F(ConfigLookupTest, TheFirstStoreThatHoldsTheKeyWinsEvenWithAnEmptyValue) {
    given(makeReadOnlyStore("A", 1, {{L"k", L""}}));
    given(makeReadOnlyStore("B", 2, {{L"k", L"b"}}));
    const auto answer = ask(L"K");
    EXPECT_TRUE(answer.found);
    EXPECT_EQ(answer.value, L"");
    EXPECT_EQ(answer.storeName, L"A");
}

TEST_F(ConfigLookupTest, AnOldNameReturnsTheValueOfTheNewName) {
    given(makeReadOnlyStore("R", 33, {{L"TFTPPrimaryServer", L"tftp"}}));
    const auto answer = ask(L"TftpServer1");
    EXPECT_EQ(answer.value, L"tftp");
    EXPECT_FALSE(answer.valueFromLegacyKey);
}

TEST_F(ConfigLookupTest, ANewNameFallsBackToTheOldName) {
    given(makeReadOnlyStore("R", 33, {{L"TftpServer1", L"tftp"}}));
    const auto answer = ask(L"TFTPPrimaryServer");
    EXPECT_EQ(answer.value, L"tftp");
    EXPECT_TRUE(answer.valueFromLegacyKey);
}

TEST_F(ConfigLookupTest, ValueHeldUnderTheRequestedOldNameSetsTheFlag) {
    given(makeReadOnlyStore("R", 33, {{L"TftpServer1", L"tftp"}}));
    const auto answer = ask(L"TftpServer1");
    EXPECT_EQ(answer.value, L"tftp");
    EXPECT_TRUE(answer.valueFromLegacyKey);
}

TEST_F(ConfigLookupTest, TheNewNameWinsInWhicheverStoreItIs) {
    given(makeReadOnlyStore("First", 1, {{L"TftpServer1", L"old"}}));
    given(makeReadOnlyStore("Last", 500, {{L"TFTPPrimaryServer", L"new"}}));
    EXPECT_EQ(ask(L"TftpServer1").value, L"new");
    EXPECT_EQ(ask(L"TFTPPrimaryServer").value, L"new");
    given(makeReadOnlyStore("Front", 0, {{L"TFTPPrimaryServer", L"front"}}));
    EXPECT_EQ(ask(L"TftpServer1").value, L"front");
}

TEST_F(ConfigLookupTest, ALookupNeverClearsTheFlagOfTheOldName) {
    given(makeReadOnlyStore("R", 33, {{L"k", L"v"}}));
    std::wstring value;
    std::wstring storeName;
    bool valueFromLegacyKey = true;
    manager.getValue(L"k", value, storeName, valueFromLegacyKey, false, "");
    EXPECT_TRUE(valueFromLegacyKey);
}

TEST_F(ConfigLookupTest, KeyAndValueMayBeOneString) {
    given(makeReadOnlyStore("Empty", 10));
    given(makeReadOnlyStore("R", 33, {{L"TftpServer1", L"old"}, {L"k", L"v"}}));
    for (const auto& [key, value] :
         ConfigMap{{L"k", L"v"}, {L"TftpServer1", L"old"}, {L"TFTPPrimaryServer", L"old"}, {L"absent", L""}}) {
        auto text = key;
        EXPECT_EQ(manager.getValue(text, text), !value.empty());
        EXPECT_EQ(text, value);
    }
}

TEST_F(ConfigLookupTest, SkipLocalSkipsWritableStores) {
    const auto writable = makeWritableStore("L", 20, {{L"k", L"user"}});
    writable->local = false;
    given(writable);
    EXPECT_FALSE(ask(L"k", true).found);
    given(makeReadOnlyStore("R", 33, {{L"k", L"admin"}}));
    EXPECT_EQ(ask(L"k", true).value, L"admin");
    EXPECT_EQ(ask(L"k", false).value, L"user");
}

TEST_F(ConfigLookupTest, AStoreNameRestrictsTheLookupToThatStoreIgnoringCase) {
    given(makeReadOnlyStore("A", 1, {{L"k", L"a"}}));
    given(makeReadOnlyStore("B", 2, {{L"other", L"b"}}));
    EXPECT_FALSE(ask(L"k", false, "B").found);
    EXPECT_EQ(ask(L"k", false, "a").value, L"a");
    EXPECT_EQ(manager.getValue(std::string("b"), std::wstring(L"other")), L"b");
    EXPECT_EQ(manager.getValue(std::string("b"), std::wstring(L"k")), L"");
}

TEST_F(ConfigLookupTest, StoreNameAndSkipLocalApplyTogether) {
    given(makeWritableStore("L", 1, {{L"k", L"user"}}));
    EXPECT_FALSE(ask(L"k", true, "L").found);
}

TEST_F(ConfigLookupTest, FipsModeForcesTheKeyEvenOnAMiss) {
    zel::common::FipsUtils::overrideFipsMode(true);
    const auto miss = ask(L"telephony_p2p_enabled");
    EXPECT_FALSE(miss.found);
    EXPECT_EQ(miss.value, L"false");
    EXPECT_EQ(manager.getValue(std::string("R"), std::wstring(L"Telephony_P2P_Enabled")), L"");
    given(makeReadOnlyStore("R", 33, {{L"Telephony_P2P_Enabled", L"true"}}));
    EXPECT_EQ(ask(L"Telephony_P2P_Enabled").value, L"false");
}

TEST_F(ConfigLookupTest, OriginalValueOfAKeyOnlyTheUserSetIsEmptyAndOverridden) {
    given(makeWritableStore("L", 20, {{L"k", L"u"}}));
    const auto original = askOriginal(L"k");
    EXPECT_TRUE(original.hasOverride);
    EXPECT_EQ(original.value, L"");
    EXPECT_EQ(original.storeName, L"");
    EXPECT_FALSE(original.fromLegacyKey);
}

TEST_F(ConfigLookupTest, TheOriginalValueIsTheAdministratorsBehindTheUsers) {
    given(makeWritableStore("L", 20, {{L"k", L"u"}}));
    given(makeReadOnlyStore("R", 33, {{L"k", L"a"}}));
    const auto original = askOriginal(L"k");
    EXPECT_TRUE(original.hasOverride);
    EXPECT_EQ(original.value, L"a");
    EXPECT_EQ(original.storeName, L"R");
}

TEST_F(ConfigLookupTest, ReadOnlyStoreAheadOfTheUsersIsNotOverridden) {
    given(makeReadOnlyStore("R", 10, {{L"k", L"a"}}));
    given(makeWritableStore("L", 20, {{L"k", L"u"}}));
    EXPECT_FALSE(askOriginal(L"k").hasOverride);
}

TEST_F(ConfigLookupTest, AnEmptyOriginalValueIsReplacedByThatOfTheNextStore) {
    given(makeReadOnlyStore("Empty", 10, {{L"k", L""}}));
    given(makeReadOnlyStore("Full", 20, {{L"k", L"a"}}));
    const auto original = askOriginal(L"k");
    EXPECT_EQ(original.value, L"a");
    EXPECT_EQ(original.storeName, L"Full");
}

TEST_F(ConfigLookupTest, EmptyUsersValueStillOverrides) {
    given(makeWritableStore("L", 20, {{L"k", L""}}));
    given(makeReadOnlyStore("R", 33, {{L"k", L"a"}}));
    EXPECT_TRUE(askOriginal(L"k").hasOverride);
}

TEST_F(ConfigLookupTest, AnOldNamesOriginalValueIsItsOwnUnlessOverridden) {
    given(makeReadOnlyStore("R", 33, {{L"TFTPPrimaryServer", L"new"}}));
    const auto original = askOriginal(L"TftpServer1");
    EXPECT_FALSE(original.hasOverride);
    EXPECT_EQ(original.value, L"");
    EXPECT_EQ(original.storeName, L"R");
    EXPECT_FALSE(original.fromLegacyKey);
}

TEST_F(ConfigLookupTest, AnOldNamesOriginalValueIsTheNewNamesIfOverridden) {
    given(makeWritableStore("L", 20, {{L"TFTPPrimaryServer", L"u"}}));
    given(makeReadOnlyStore("R", 33, {{L"TFTPPrimaryServer", L"new"}, {L"TftpServer1", L"old"}}));
    const auto original = askOriginal(L"TftpServer1");
    EXPECT_TRUE(original.hasOverride);
    EXPECT_EQ(original.value, L"new");
    EXPECT_FALSE(original.fromLegacyKey);
}

TEST_F(ConfigLookupTest, TheOriginalValueOfAnOldNameThatTheUserSetIsThatOfTheOldName) {
    given(makeWritableStore("L", 20, {{L"TftpServer1", L"u"}}));
    given(makeReadOnlyStore("R", 33, {{L"TftpServer1", L"a"}}));
    const auto original = askOriginal(L"TftpServer1");
    EXPECT_TRUE(original.hasOverride);
    EXPECT_EQ(original.value, L"a");
    EXPECT_TRUE(original.fromLegacyKey);
}

TEST_F(ConfigLookupTest, TheOriginalValueIsReadFromNoStoreBehindTheFirstReadOnlyOne) {
    given(makeWritableStore("L", 20, {{L"k", L"u"}}));
    given(makeReadOnlyStore("R", 33, {{L"k", L"a"}}));
    const auto last = given(makeReadOnlyStore("Last", 40, {{L"k", L"z"}}));
    int readings = 0;
    last->beforeReading = [&] { ++readings; };
    EXPECT_EQ(askOriginal(L"k").value, L"a");
    EXPECT_EQ(readings, 0);
}

TEST_F(ConfigLookupTest, TheOriginalValueOfANewNameFallsBackToTheOldName) {
    given(makeWritableStore("L", 20, {{L"TftpServer1", L"u"}}));
    given(makeReadOnlyStore("R", 33, {{L"TftpServer1", L"a"}}));
    const auto original = askOriginal(L"TFTPPrimaryServer");
    EXPECT_TRUE(original.hasOverride);
    EXPECT_TRUE(original.fromLegacyKey);
    EXPECT_EQ(original.value, L"a");
}

TEST_F(ConfigLookupTest, OriginalValueIsReadWhenTheKeyIsOneStringWithAResult) {
    given(makeWritableStore("L", 20, {{L"TftpServer1", L"u"}}));
    given(makeReadOnlyStore("R", 33, {{L"TFTPPrimaryServer", L"new"}, {L"TftpServer1", L"old"}}));
    std::wstring other;
    bool fromLegacyKey = false;
    std::wstring keyAndName = L"TftpServer1";
    EXPECT_TRUE(manager.getOriginalValue(keyAndName, other, keyAndName, fromLegacyKey));
    EXPECT_EQ(other, L"old");
    EXPECT_EQ(keyAndName, L"R");
    EXPECT_TRUE(fromLegacyKey);
    std::wstring keyAndValue = L"TftpServer1";
    EXPECT_TRUE(manager.getOriginalValue(keyAndValue, keyAndValue, other, fromLegacyKey));
    EXPECT_EQ(keyAndValue, L"old");
    EXPECT_EQ(other, L"R");
}

} // namespace ZelUnified
