#include "ConfigStoreManagerFixture.h"

#include <zel/FipsUtils.h>

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;

/// Calls the full operation with all its arguments and out parameters.
class ConfigStoreManagerLookup : public ConfigStoreManagerFixture {
protected:
    ~ConfigStoreManagerLookup() override { zel::common::FipsUtils::overrideFipsMode(std::nullopt); }

    struct Answer {
        bool found = false;
        std::wstring value = L"before";
        std::wstring storeName = L"before";
        bool valueFromLegacyKey = false;
    };

    Answer ask(const std::wstring& key, bool skipLocal = false, const std::string& storeFilter = "") {
        Answer answer;
        answer.found =
            manager.getValue(key, answer.value, answer.storeName, answer.valueFromLegacyKey, skipLocal, storeFilter);
        return answer;
    }

    struct Original {
        bool hasOverride = false;
        std::wstring value = L"before";
        std::wstring storeName;
        bool fromLegacyKey = true;
    };

    Original askOriginal(const std::wstring& key) {
        Original original;
        original.hasOverride =
            manager.getOriginalValue(key, original.value, original.storeName, original.fromLegacyKey);
        return original;
    }
};

namespace {

class DebugLookup : public ConfigStoreManagerLookup {
protected:
    testing_host::LogRecorder debugLog{testing_host::LogRecorder::Debug::On};

    std::vector<std::string> debugLines() const { return debugLog.getTexts(ZelLogLevel::Debug); }
};

} // namespace

TEST_F(ConfigStoreManagerLookup, WithoutStoresNothingIsFound) {
    const auto answer = ask(L"k");
    EXPECT_FALSE(answer.found);
    EXPECT_EQ(answer.value, L"");
    EXPECT_EQ(answer.storeName, L"before");
}

TEST_F(ConfigStoreManagerLookup, TheFirstStoreThatHoldsTheKeyWinsEvenWithAnEmptyValue) {
    given(makeReadOnlyStore("A", 1, {{L"k", L""}}));
    given(makeReadOnlyStore("B", 2, {{L"k", L"b"}}));
    const auto answer = ask(L"K");
    EXPECT_TRUE(answer.found);
    EXPECT_EQ(answer.value, L"");
    EXPECT_EQ(answer.storeName, L"A");
}

TEST_F(ConfigStoreManagerLookup, AnOldNameReturnsTheValueOfTheNewName) {
    given(makeReadOnlyStore("R", 33, {{L"TFTPPrimaryServer", L"tftp"}}));
    const auto answer = ask(L"TftpServer1");
    EXPECT_EQ(answer.value, L"tftp");
    EXPECT_FALSE(answer.valueFromLegacyKey);
}

TEST_F(ConfigStoreManagerLookup, ANewNameFallsBackToTheOldName) {
    given(makeReadOnlyStore("R", 33, {{L"TftpServer1", L"tftp"}}));
    const auto answer = ask(L"TFTPPrimaryServer");
    EXPECT_EQ(answer.value, L"tftp");
    EXPECT_TRUE(answer.valueFromLegacyKey);
}

TEST_F(ConfigStoreManagerLookup, ValueHeldUnderTheRequestedOldNameSetsTheFlag) {
    given(makeReadOnlyStore("R", 33, {{L"TftpServer1", L"tftp"}}));
    const auto answer = ask(L"TftpServer1");
    EXPECT_EQ(answer.value, L"tftp");
    EXPECT_TRUE(answer.valueFromLegacyKey);
}

TEST_F(ConfigStoreManagerLookup, TheNewNameWinsInWhicheverStoreItIs) {
    given(makeReadOnlyStore("First", 1, {{L"TftpServer1", L"old"}}));
    given(makeReadOnlyStore("Last", 500, {{L"TFTPPrimaryServer", L"new"}}));
    EXPECT_EQ(ask(L"TftpServer1").value, L"new");
    EXPECT_EQ(ask(L"TFTPPrimaryServer").value, L"new");
    given(makeReadOnlyStore("Front", 0, {{L"TFTPPrimaryServer", L"front"}}));
    EXPECT_EQ(ask(L"TftpServer1").value, L"front");
}

TEST_F(ConfigStoreManagerLookup, ALookupNeverClearsTheFlagOfTheOldName) {
    given(makeReadOnlyStore("R", 33, {{L"k", L"v"}}));
    std::wstring value;
    std::wstring storeName;
    bool valueFromLegacyKey = true;
    manager.getValue(L"k", value, storeName, valueFromLegacyKey, false, "");
    EXPECT_TRUE(valueFromLegacyKey);
}

TEST_F(ConfigStoreManagerLookup, KeyAndValueMayBeOneString) {
    given(makeReadOnlyStore("Empty", 10));
    given(makeReadOnlyStore("R", 33, {{L"TftpServer1", L"old"}, {L"k", L"v"}}));
    for (const auto& [key, value] :
         ConfigMap{{L"k", L"v"}, {L"TftpServer1", L"old"}, {L"TFTPPrimaryServer", L"old"}, {L"absent", L""}}) {
        auto text = key;
        EXPECT_EQ(manager.getValue(text, text), !value.empty());
        EXPECT_EQ(text, value);
    }
}

TEST_F(ConfigStoreManagerLookup, SkipLocalSkipsWritableStores) {
    const auto writable = makeWritableStore("L", 20, {{L"k", L"user"}});
    writable->local = false;
    given(writable);
    EXPECT_FALSE(ask(L"k", true).found);
    given(makeReadOnlyStore("R", 33, {{L"k", L"admin"}}));
    EXPECT_EQ(ask(L"k", true).value, L"admin");
    EXPECT_EQ(ask(L"k", false).value, L"user");
}

TEST_F(ConfigStoreManagerLookup, AStoreNameRestrictsTheLookupToThatStoreIgnoringCase) {
    given(makeReadOnlyStore("A", 1, {{L"k", L"a"}}));
    given(makeReadOnlyStore("B", 2, {{L"other", L"b"}}));
    EXPECT_FALSE(ask(L"k", false, "B").found);
    EXPECT_EQ(ask(L"k", false, "a").value, L"a");
    EXPECT_EQ(manager.getValue(std::string("b"), std::wstring(L"other")), L"b");
    EXPECT_EQ(manager.getValue(std::string("b"), std::wstring(L"k")), L"");
}

TEST_F(ConfigStoreManagerLookup, StoreNameAndSkipLocalApplyTogether) {
    given(makeWritableStore("L", 1, {{L"k", L"user"}}));
    EXPECT_FALSE(ask(L"k", true, "L").found);
}

TEST_F(ConfigStoreManagerLookup, FipsModeForcesTheKeyEvenOnAMiss) {
    zel::common::FipsUtils::overrideFipsMode(true);
    const auto miss = ask(L"telephony_p2p_enabled");
    EXPECT_FALSE(miss.found);
    EXPECT_EQ(miss.value, L"false");
    EXPECT_EQ(manager.getValue(std::string("R"), std::wstring(L"Telephony_P2P_Enabled")), L"");
    given(makeReadOnlyStore("R", 33, {{L"Telephony_P2P_Enabled", L"true"}}));
    EXPECT_EQ(ask(L"Telephony_P2P_Enabled").value, L"false");
}

TEST_F(DebugLookup, TheLineContainsKeyValueAndStore) {
    given(makeReadOnlyStore("R", 33, {{L"k", L"v"}}));
    debugLog.clear();
    ask(L"k", true);
    EXPECT_THAT(debugLines(),
                ElementsAre("key : [k] skipLocal : [1]  value: [v] success: [true] configStoreName: [R]"));
    EXPECT_EQ(debugLog.getRecords().front().function, "ZelUnified::ConfigStoreManager::getValue");
}

TEST_F(DebugLookup, TheLineOfAMissContainsThePassedStoreName) {
    ask(L"k");
    EXPECT_THAT(debugLines(),
                ElementsAre("key : [k] skipLocal : [0]  value: [] success: [false] configStoreName: [before]"));
}

TEST_F(DebugLookup, TheLineReportsARenamedKey) {
    given(makeReadOnlyStore("R", 33, {{L"TFTPPrimaryServer", L"v"}}));
    debugLog.clear();
    ask(L"TftpServer1");
    EXPECT_THAT(debugLines(),
                ElementsAre("key : [TftpServer1] is an alias. Key has been renamed. Actual lookup done on key name: "
                            "[TFTPPrimaryServer] - skipLocal : [0]  value: [v] success: [true] configStoreName: [R]"));
}

TEST_F(DebugLookup, TheLineMentionsTheOldNameOnlyIfTheNewNameWasRequested) {
    given(makeReadOnlyStore("R", 33, {{L"TftpServer1", L"v"}}));
    debugLog.clear();
    ask(L"TFTPPrimaryServer");
    ask(L"TftpServer1");
    EXPECT_THAT(debugLines(),
                ElementsAre("key : [TFTPPrimaryServer] did not exist. actual lookup done on legacy key name : "
                            "[TftpServer1] - skipLocal : [0]  value: [v] success: [true] configStoreName: [R]",
                            "key : [TftpServer1] skipLocal : [0]  value: [v] success: [true] configStoreName: [R]"));
}

TEST_F(DebugLookup, TheValueOfASensitiveRequestedNameIsHiddenInTheLineAndReturned) {
    manager.setKeySensitive(L"Secret");
    given(makeReadOnlyStore("R", 33, {{L"secret", L"hunter2"}}));
    debugLog.clear();
    EXPECT_EQ(ask(L"SECRET").value, L"hunter2");
    EXPECT_THAT(debugLines(),
                ElementsAre("key : [SECRET] skipLocal : [0]  value: [VALUE_HIDDEN] success: [true] configStoreName: "
                            "[R]"));
}

TEST_F(DebugLookup, TheSensitivityOfTheOtherNameDoesNotHideTheValue) {
    manager.setKeySensitive(L"TftpServer1");
    given(makeReadOnlyStore("R", 33, {{L"TFTPPrimaryServer", L"v"}}));
    debugLog.clear();
    EXPECT_EQ(ask(L"TftpServer1").value, L"v");
    EXPECT_EQ(ask(L"TFTPPrimaryServer").value, L"v");
    const auto lines = debugLines();
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_THAT(lines[0], testing::HasSubstr("value: [VALUE_HIDDEN]"));
    EXPECT_THAT(lines[1], testing::HasSubstr("value: [v]"));
}

TEST_F(DebugLookup, PersonalDataIsMaskedInTheLine) {
    given(makeReadOnlyStore("R", 33, {{L"k", L"jane.doe@example.com"}}));
    debugLog.clear();
    EXPECT_EQ(ask(L"k").value, L"jane.doe@example.com");
    EXPECT_FALSE(debugLog.mentions("jane.doe"));
}

TEST_F(ConfigStoreManagerLookup, WithoutDebugNoLineIsLogged) {
    ask(L"k");
    EXPECT_THAT(logged(), IsEmpty());
}

TEST_F(ConfigStoreManagerLookup, OriginalValueOfAKeyOnlyTheUserSetIsEmptyAndOverridden) {
    given(makeWritableStore("L", 20, {{L"k", L"u"}}));
    const auto original = askOriginal(L"k");
    EXPECT_TRUE(original.hasOverride);
    EXPECT_EQ(original.value, L"");
    EXPECT_EQ(original.storeName, L"");
    EXPECT_FALSE(original.fromLegacyKey);
}

TEST_F(ConfigStoreManagerLookup, TheOriginalValueIsTheAdministratorsBehindTheUsers) {
    given(makeWritableStore("L", 20, {{L"k", L"u"}}));
    given(makeReadOnlyStore("R", 33, {{L"k", L"a"}}));
    const auto original = askOriginal(L"k");
    EXPECT_TRUE(original.hasOverride);
    EXPECT_EQ(original.value, L"a");
    EXPECT_EQ(original.storeName, L"R");
}

TEST_F(ConfigStoreManagerLookup, ReadOnlyStoreAheadOfTheUsersIsNotOverridden) {
    given(makeReadOnlyStore("R", 10, {{L"k", L"a"}}));
    given(makeWritableStore("L", 20, {{L"k", L"u"}}));
    EXPECT_FALSE(askOriginal(L"k").hasOverride);
}

TEST_F(ConfigStoreManagerLookup, AnEmptyOriginalValueIsReplacedByThatOfTheNextStore) {
    given(makeReadOnlyStore("Empty", 10, {{L"k", L""}}));
    given(makeReadOnlyStore("Full", 20, {{L"k", L"a"}}));
    const auto original = askOriginal(L"k");
    EXPECT_EQ(original.value, L"a");
    EXPECT_EQ(original.storeName, L"Full");
}

TEST_F(ConfigStoreManagerLookup, EmptyUsersValueStillOverrides) {
    given(makeWritableStore("L", 20, {{L"k", L""}}));
    given(makeReadOnlyStore("R", 33, {{L"k", L"a"}}));
    EXPECT_TRUE(askOriginal(L"k").hasOverride);
}

TEST_F(ConfigStoreManagerLookup, AnOldNamesOriginalValueIsItsOwnUnlessOverridden) {
    given(makeReadOnlyStore("R", 33, {{L"TFTPPrimaryServer", L"new"}}));
    const auto original = askOriginal(L"TftpServer1");
    EXPECT_FALSE(original.hasOverride);
    EXPECT_EQ(original.value, L"");
    EXPECT_EQ(original.storeName, L"R");
    EXPECT_FALSE(original.fromLegacyKey);
}

TEST_F(ConfigStoreManagerLookup, AnOldNamesOriginalValueIsTheNewNamesIfOverridden) {
    given(makeWritableStore("L", 20, {{L"TFTPPrimaryServer", L"u"}}));
    given(makeReadOnlyStore("R", 33, {{L"TFTPPrimaryServer", L"new"}, {L"TftpServer1", L"old"}}));
    const auto original = askOriginal(L"TftpServer1");
    EXPECT_TRUE(original.hasOverride);
    EXPECT_EQ(original.value, L"new");
    EXPECT_FALSE(original.fromLegacyKey);
}

TEST_F(ConfigStoreManagerLookup, TheOriginalValueOfAnOldNameThatTheUserSetIsThatOfTheOldName) {
    given(makeWritableStore("L", 20, {{L"TftpServer1", L"u"}}));
    given(makeReadOnlyStore("R", 33, {{L"TftpServer1", L"a"}}));
    const auto original = askOriginal(L"TftpServer1");
    EXPECT_TRUE(original.hasOverride);
    EXPECT_EQ(original.value, L"a");
    EXPECT_TRUE(original.fromLegacyKey);
}

TEST_F(ConfigStoreManagerLookup, TheOriginalValueIsReadFromNoStoreBehindTheFirstReadOnlyOne) {
    given(makeWritableStore("L", 20, {{L"k", L"u"}}));
    given(makeReadOnlyStore("R", 33, {{L"k", L"a"}}));
    const auto last = given(makeReadOnlyStore("Last", 40, {{L"k", L"z"}}));
    int questions = 0;
    last->beforeReading = [&] { ++questions; };
    EXPECT_EQ(askOriginal(L"k").value, L"a");
    EXPECT_EQ(questions, 0);
}

TEST_F(ConfigStoreManagerLookup, TheOriginalValueOfANewNameFallsBackToTheOldName) {
    given(makeWritableStore("L", 20, {{L"TftpServer1", L"u"}}));
    given(makeReadOnlyStore("R", 33, {{L"TftpServer1", L"a"}}));
    const auto original = askOriginal(L"TFTPPrimaryServer");
    EXPECT_TRUE(original.hasOverride);
    EXPECT_TRUE(original.fromLegacyKey);
    EXPECT_EQ(original.value, L"a");
}

TEST_F(DebugLookup, TheLineContainsTheStoreEvenIfTheCallerDoesNotRequestIt) {
    given(makeReadOnlyStore("R", 33, {{L"k", L"v"}}));
    debugLog.clear();
    EXPECT_EQ(valueOf(L"k"), L"v");
    EXPECT_THAT(debugLines(),
                ElementsAre("key : [k] skipLocal : [0]  value: [v] success: [true] configStoreName: [R]"));
}

TEST_F(DebugLookup, KeyAndStoreNameMayBeOneString) {
    zel::common::FipsUtils::overrideFipsMode(true);
    given(makeReadOnlyStore("R", 33, {{L"Telephony_P2P_Enabled", L"true"}}));
    debugLog.clear();
    std::wstring text = L"Telephony_P2P_Enabled";
    std::wstring value;
    bool valueFromLegacyKey = false;
    EXPECT_TRUE(manager.getValue(text, value, text, valueFromLegacyKey, false, ""));
    EXPECT_EQ(value, L"false");
    EXPECT_EQ(text, L"R");
    EXPECT_THAT(debugLines(), ElementsAre("key : [Telephony_P2P_Enabled] skipLocal : [0]  value: [false] success: "
                                          "[true] configStoreName: [R]"));
}

TEST_F(DebugLookup, SensitiveValueIsHiddenWhenKeyAndStoreNameAreOneString) {
    manager.setKeySensitive(L"Schl\u00fcssel");
    given(makeReadOnlyStore("R", 33, {{L"Schl\u00fcssel", L"hunter2"}}));
    debugLog.clear();
    std::wstring text = L"SCHL\u00dcSSEL";
    std::wstring value;
    bool valueFromLegacyKey = false;
    EXPECT_TRUE(manager.getValue(text, value, text, valueFromLegacyKey, false, ""));
    EXPECT_EQ(value, L"hunter2");
    EXPECT_THAT(debugLines(), ElementsAre("key : [SCHL\xC3\x9CSSEL] skipLocal : [0]  value: [VALUE_HIDDEN] success: "
                                          "[true] configStoreName: [R]"));
}

TEST_F(ConfigStoreManagerLookup, OriginalValueIsReadWhenTheKeyIsOneStringWithAResult) {
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
