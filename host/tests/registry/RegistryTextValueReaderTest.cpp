#include "RegistryTextFixture.h"

namespace {

using namespace registry_text_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(RegistryTextValueReader, AHexTextOfVersion4ConsistsOfOneByteCharacters) {
    const auto text = parse("REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\K]\r\n\"e\"=hex(2):25,48,25,00\r\n"
                            "\"m\"=hex(7):61,00,62,00,00\r\n\"b\"=hex:61,62\r\n");
    EXPECT_THAT(text.refusals, IsEmpty());
    ASSERT_THAT(text.sections, SizeIs(1));
    const auto& entries = text.sections[0].entries;
    ASSERT_THAT(entries, SizeIs(3));
    EXPECT_EQ(entries[0].value, (RegistryValue{L"e", REG_EXPAND_SZ, encodeRegistryText(L"%H%")}));
    EXPECT_EQ(entries[1].value.data, (std::vector<std::uint8_t>{'a', 0, 0, 0, 'b', 0, 0, 0, 0, 0}));
    EXPECT_EQ(entries[2].value, (RegistryValue{L"b", REG_BINARY, {0x61, 0x62}}));
}

TEST(RegistryTextValueReader, EveryTypeOfValueIsParsed) {
    EXPECT_EQ(valueOf("@=\"d\""), makeTextValue(L"", L"d"));
    EXPECT_EQ(valueOf("\"a\"=\"\""), makeTextValue(L"a", L""));
    EXPECT_EQ(valueOf("\"a\"=dword:ffffffff"), makeNumberValue(L"a", 0xFFFFFFFF));
    EXPECT_EQ(valueOf("\"a\"=dword:1F"), makeNumberValue(L"a", 31));
    EXPECT_EQ(valueOf("\"a\"=hex:"), (RegistryValue{L"a", REG_BINARY, {}}));
    EXPECT_EQ(valueOf("\"a\"=hex:0,F,aB"), (RegistryValue{L"a", REG_BINARY, {0, 15, 0xAB}}));
    EXPECT_EQ(valueOf("\"a\"=hex(0):"), (RegistryValue{L"a", REG_NONE, {}}));
    EXPECT_EQ(valueOf("\"a\"=hex(b):01,00,00,00,00,00,00,00"),
              (RegistryValue{L"a", REG_QWORD, {1, 0, 0, 0, 0, 0, 0, 0}}));
    EXPECT_EQ(valueOf("\"a\"=hex(7):61,00,00,00,62,00,00,00,00,00").type, REG_MULTI_SZ);
    EXPECT_EQ(valueOf("\"a\"=hex(1):61,00"), (RegistryValue{L"a", REG_SZ, {'a', 0}}));
    EXPECT_EQ(valueOf("\"a\"=hex(ffff0001):01"), (RegistryValue{L"a", 0xFFFF0001, {1}}));
}

TEST(RegistryTextValueReader, OnlyQuotesAndBackslashesAreUnescaped) {
    EXPECT_EQ(valueOf(R"("a\"b"="C:\\new\\\"x\"")"), makeTextValue(L"a\"b", L"C:\\new\\\"x\""));
    EXPECT_EQ(valueOf(R"("a"="C:\new")"), makeTextValue(L"a", L"C:\\new"));
    EXPECT_EQ(valueOf(R"("a=b;c]"="[x] ; no comment")"), makeTextValue(L"a=b;c]", L"[x] ; no comment"));
}

TEST(RegistryTextValueReader, ATextMaySpanLines) {
    const auto entries = entriesOf("\"a\"=\"one\r\n[two]\r\n\"\r\n\"b\"=\"c\"\r\n");
    ASSERT_THAT(entries, SizeIs(2));
    EXPECT_EQ(entries[0].value, makeTextValue(L"a", L"one\r\n[two]\r\n"));
    EXPECT_EQ(entries[1].line, 7U);
}

TEST(RegistryTextValueReader, ABackslashContinuesBytesAcrossComments) {
    const std::vector<std::uint8_t> expected{1, 2, 3, 4};
    EXPECT_EQ(valueOf("\"a\"=hex:01,02,\\\r\n  03,\\\r\n  04").data, expected);
    EXPECT_EQ(valueOf("\"a\"=hex:01,02,\\ ; first\r\n; second\r\n  03,04").data, expected);
    EXPECT_EQ(valueOf("\"a\"=hex:\\\r\n  01,02,03,04").data, expected);
    EXPECT_EQ(entriesOf("\"a\"=hex:01,\\\r\n\r\n\"b\"=\"c\"\r\n").size(), 2U);
    EXPECT_EQ(valueOf("\"a\"=hex:01,\\").data, std::vector<std::uint8_t>{1});
}

TEST(RegistryTextValueReader, BlanksAndCommentsAroundValuesAreIgnored) {
    const auto entries = entriesOf("; comment\r\n\r\n  \"a\" = \"b\" ; comment\r\n\t@ = dword:1;c\r\n;\r\n");
    ASSERT_THAT(entries, SizeIs(2));
    EXPECT_EQ(entries[0].value, makeTextValue(L"a", L"b"));
    EXPECT_EQ(entries[1].value, makeNumberValue(L"", 1));
}

TEST(RegistryTextValueReader, ContinuationLinesOfAMalformedValueAreSkipped) {
    EXPECT_EQ(refusalOf("\"a\"=hex:00,\\\r\n  zz,\\\r\n  01,\\\r\n  02\r\n\"b\"=\"c\"\r\n").first, 4U);
}

TEST(RegistryTextValueReader, AValueTheClientCannotReadIsRejectedAndTheNextOneIsParsed) {
    const auto fits = std::string(2047, 'x');
    const auto text = parse(header + "[HKCU\\K]\r\n\"fits\"=\"" + fits + "\"\r\n\"long\"=\"" + fits + "x\"\r\n\"" +
                            std::string(259, 'n') + "\"=\"1\"\r\n\"" + std::string(260, 'n') + "\"=\"1\"\r\n\"" +
                            std::string(260, 'n') + "\"=-\r\n");
    ASSERT_THAT(text.refusals, SizeIs(2));
    EXPECT_EQ(text.refusals[0].line, 5U);
    EXPECT_EQ(text.refusals[0].reason, "the name or the value is longer than the client can read");
    EXPECT_EQ(text.refusals[1].line, 7U);
    EXPECT_THAT(text.sections.at(0).entries, SizeIs(3));
}

TEST(RegistryTextValueReader, AnUnfinishedValueDoesNotHideTheKeyBelowIt) {
    for (const std::string value :
         {"\"a\"=\"no quote", "\"a\"=\"no quote\\", "\"a\"=\"two\r\nlines", "\"a\"=hex:zz,\\"}) {
        for (const std::string key : {"[HKEY_CURRENT_USER\\L]", "\f[-hkcu\\L]"}) {
            const auto text = parse(header + "[HKCU\\K]\r\n" + value + "\r\n" + key + "\r\n;\"\r\n");
            ASSERT_THAT(text.sections, SizeIs(2)) << value << key;
            EXPECT_EQ(text.sections[1].path, L"L");
        }
    }
    const auto bytes = parse(header + "[HKCU\\K]\r\n\"a\"=hex:01,\\\r\n[HKCU\\L]\r\n\"b\"=hex:02\r\n");
    ASSERT_THAT(bytes.sections, SizeIs(2));
    EXPECT_THAT(bytes.sections[0].entries.at(0).value.data, ElementsAre(1));
    EXPECT_THAT(bytes.sections[1].entries.at(0).value.data, ElementsAre(2));
}

TEST(RegistryTextValueReader, ATextMayContainALineWithABracket) {
    EXPECT_EQ(decodeRegistryText(valueOf("\"a\"=\"one\r\n[two]\r\n\"").data), L"one\r\n[two]\r\n");
}

} // namespace
