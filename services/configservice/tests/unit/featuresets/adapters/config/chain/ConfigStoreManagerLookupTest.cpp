#include "ConfigLookupFixture.h"

namespace ZelUnified {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class ConfigStoreManagerLookup : public ConfigLookupFixture {};

/// Records the debug line of a lookup.
class DebugLookup : public ConfigLookupFixture {
protected:
    testing_host::LogRecorder debugLog{testing_host::LogRecorder::Debug::On};

    std::vector<std::string> debugLines() const { return debugLog.getTexts(ZelLogLevel::Debug); }
};

} // namespace

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

} // namespace ZelUnified
