#include "output/SettingsText.h"

#include "output/Failure.h"

#include <gtest/gtest.h>

namespace lumora_config {

namespace {

std::string describeFailure(std::string_view text) {
    try {
        parseDump(text, "a.dump");
    } catch (const Failure& failure) {
        return failure.what();
    }
    return "";
}

} // namespace

TEST(SettingsText, WritesOneLineForEachKey) {
    const SettingsDump dump{"user",
                            {{L"Theme", L"dark", L"A Store", false, false},
                             {L"Password", L"x", L"", true, false},
                             {L"Other", L"", L"S", true, true}},
                            ""};
    EXPECT_EQ(formatSettings(dump), "# lumora-config dump: user\n"
                                    "Theme = \"dark\"  # A Store\n"
                                    "Password = secret \"x\"\n"
                                    "Other = hidden  # S\n");
}

TEST(SettingsText, EscapesWhatAReaderCannotSee) {
    const DumpedSetting setting{L"a key", L"\t\n\r\"\\\x1\x7f\x85\x2028\x202e\xfeff\xe9", L"", false, false};
    EXPECT_EQ(formatSetting(setting),
              "\"a key\" = \"\\t\\n\\r\\\"\\\\\\u0001\\u007f\\u0085\\u2028\\u202e\\ufeff\xc3\xa9\"");
}

TEST(SettingsText, IsReadBackUnchanged) {
    const SettingsDump dump{
        "user",
        {{L"a key", L" \t\n\r\"\\\x1\x7f\x85\x2028\x202e\xfeff\xe9 ", L"Sto\nre # \"x\"", false, false},
         {L"=#\"{", L"", L"", true, false},
         {L"Hidden", L"", L"S", true, true}},
        ""};
    const auto read = parseDump(formatSettings(dump), "a.dump");
    EXPECT_EQ(read.source, "user");
    EXPECT_EQ(read.name, "a.dump");
    ASSERT_EQ(read.settings.size(), dump.settings.size());
    for (std::size_t i = 0; i < dump.settings.size(); ++i) {
        EXPECT_EQ(read.settings[i].key, dump.settings[i].key);
        EXPECT_EQ(read.settings[i].value, dump.settings[i].value);
        EXPECT_EQ(read.settings[i].storeName, dump.settings[i].storeName);
        EXPECT_EQ(read.settings[i].sensitive, dump.settings[i].sensitive);
        EXPECT_EQ(read.settings[i].hidden, dump.settings[i].hidden);
    }
}

TEST(SettingsText, AcceptsWhatAnEditorAdds) {
    const auto read =
        parseDump("\xEF\xBB\xBF# a comment\r\n\r\n  Theme=\"dark\"\r\n\tOther  =  secret  \"x\"   # S", "a");
    ASSERT_EQ(read.settings.size(), 2U);
    EXPECT_EQ(read.settings[0].value, L"dark");
    EXPECT_EQ(read.settings[1].key, L"Other");
    EXPECT_EQ(read.settings[1].storeName, L"S");
}

TEST(SettingsText, RefusesAMalformedLineAndNeverQuotesIt) {
    EXPECT_EQ(describeFailure("# x\nTheme dark"), "a.dump:2: '=' is missing behind the key");
    EXPECT_EQ(describeFailure("= \"x\""), "a.dump:1: there is no key");
    EXPECT_EQ(describeFailure("Theme = dark"), "a.dump:1: the value is not in quotes");
    EXPECT_EQ(describeFailure("Theme = s3cret \"x\""), "a.dump:1: the value is not in quotes");
    EXPECT_EQ(describeFailure("Theme = \"dark"), "a.dump:1: a quote is not closed");
    EXPECT_EQ(describeFailure("Theme = \"a\" b"), "a.dump:1: there is text behind the value");
    EXPECT_EQ(describeFailure("Theme = \"\\x\""), "a.dump:1: an escape is not one of \\\" \\\\ \\n \\r \\t \\uXXXX");
    EXPECT_EQ(describeFailure("Theme = \"\\u00g0\""),
              "a.dump:1: an escape is not one of \\\" \\\\ \\n \\r \\t \\uXXXX");
    EXPECT_EQ(describeFailure("Theme = \"\\ud83d\""),
              "a.dump:1: an escape names half of a character; write the character itself");
    EXPECT_EQ(describeFailure("Theme = \"\xff\""), "a.dump: not UTF-8");
}

TEST(SettingsText, ReadsTheSameFromJson) {
    const auto read = parseDump(R"({"type":"dump","source":"effective","values":[
        {"key":"A","value":"x\u0085","store":"S","sensitive":true,"hidden":false},
        {"key":"B","value":null,"hidden":true},{"key":"C","value":""}]})",
                                "a.dump");
    EXPECT_EQ(read.source, "effective");
    ASSERT_EQ(read.settings.size(), 3U);
    EXPECT_EQ(read.settings[0].value, L"x\x85");
    EXPECT_TRUE(read.settings[0].sensitive);
    EXPECT_TRUE(read.settings[1].hidden);
    EXPECT_EQ(read.settings[2].value, L"");
}

TEST(SettingsText, RefusesOtherJson) {
    EXPECT_EQ(describeFailure(R"({"type":"list","values":[]})"), "a.dump: not a dump");
    EXPECT_EQ(describeFailure(R"({"type":"dump"})"), "a.dump: not a dump in JSON");
    EXPECT_EQ(describeFailure(R"({"type":"dump","values":[{"key":"A","value":""},{"key":"B","value":1}]})"),
              "a.dump: not a dump in JSON, see value 2 of it");
}

TEST(SettingsText, NamesThePlaceOfAnErrorInJsonWithoutItsText) {
    EXPECT_EQ(describeFailure("{s3cret"), "a.dump:1:2: not JSON");
    EXPECT_EQ(describeFailure("{\"type\":\"dump\",\n\"values\":[\n  s3cret]}"), "a.dump:3:3: not JSON");
    EXPECT_EQ(describeFailure("{\"s3cret"), "a.dump:1:9: not JSON"); // behind the end
    EXPECT_EQ(describeFailure("{\n"), "a.dump:2:1: not JSON");
}

} // namespace lumora_config
