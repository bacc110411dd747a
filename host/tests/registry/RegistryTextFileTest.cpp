#include <registry/RegistryTextFile.h>

#include <gmock/gmock.h>

#include <chrono>

namespace {

using namespace zel::registry;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string header = "Windows Registry Editor Version 5.00\r\n\r\n";

RegistryText parse(const std::string& bytes) {
    return parseRegistryText(bytes, HKEY_CURRENT_USER);
}

/// Returns the text in UTF-16LE with a byte order mark, like an export.
std::string toUtf16File(std::wstring_view text) {
    const auto data = encodeRegistryText(text);
    return "\xFF\xFE" + std::string(data.begin(), data.end() - 2);
}

/// Returns the entries of a file with one key.
std::vector<RegistryTextEntry> entriesOf(const std::string& lines) {
    const auto text = parse(header + "[HKEY_CURRENT_USER\\K]\r\n" + lines);
    EXPECT_THAT(text.refusals, IsEmpty());
    EXPECT_THAT(text.sections, SizeIs(1));
    return text.sections.empty() ? std::vector<RegistryTextEntry>{} : text.sections[0].entries;
}

RegistryValue valueOf(const std::string& line) {
    const auto entries = entriesOf(line + "\r\n");
    EXPECT_THAT(entries, SizeIs(1));
    return entries.empty() ? RegistryValue{} : entries[0].value;
}

/// Returns the line and reason of the only refusal in a file with one key.
std::pair<std::size_t, std::string> refusalOf(const std::string& lines) {
    const auto text = parse(header + "[HKEY_CURRENT_USER\\K]\r\n" + lines);
    if (text.refusals.size() != 1) {
        return {0, "not one refusal but " + std::to_string(text.refusals.size())};
    }
    return {text.refusals[0].line, text.refusals[0].reason};
}

TEST(RegistryTextFile, AnExportInUtf16IsRead) {
    const auto text = parse(toUtf16File(L"Windows Registry Editor Version 5.00\r\n"
                                        L"\r\n"
                                        L"[HKEY_CURRENT_USER\\Software\\Policies\\\u00c4cme, Inc.]\r\n"
                                        L"\"Gr\u00fc\u00dfe\"=\"\U0001F600 \u4e2d\"\r\n"
                                        L"\"Count\"=dword:0000002a\r\n"
                                        L"\r\n"));
    EXPECT_THAT(text.refusals, IsEmpty());
    ASSERT_THAT(text.sections, SizeIs(1));
    EXPECT_EQ(text.sections[0].path, L"Software\\Policies\\\u00c4cme, Inc.");
    EXPECT_EQ(text.sections[0].firstLine, 3U);
    EXPECT_EQ(text.sections[0].lastLine, 6U);
    ASSERT_THAT(text.sections[0].entries, SizeIs(2));
    EXPECT_EQ(text.sections[0].entries[0].value, makeTextValue(L"Gr\u00fc\u00dfe", L"\U0001F600 \u4e2d"));
    EXPECT_EQ(text.sections[0].entries[0].line, 4U);
    EXPECT_EQ(text.sections[0].entries[1].value, makeNumberValue(L"Count", 42));
}

TEST(RegistryTextFile, ALineFeedInTheLowByteOfAnotherCharacterEndsNoLine) {
    const auto text = parse(toUtf16File(L"Windows Registry Editor Version 5.00\n[HKCU\\K]\n\"a\"=\"\u010a\u0a00\"\n"));
    EXPECT_THAT(text.refusals, IsEmpty());
    ASSERT_THAT(text.sections, SizeIs(1));
    EXPECT_EQ(text.sections[0].entries.at(0).value, makeTextValue(L"a", L"\u010a\u0a00"));
}

TEST(RegistryTextFile, Utf8IsReadWithAndWithoutItsMark) {
    const std::string lines =
        "Windows Registry Editor Version 5.00\n[HKEY_CURRENT_USER\\K]\n\"\xC3\xBC\"=\"\xE4\xB8\xAD\"";
    for (const auto& bytes : {lines, "\xEF\xBB\xBF" + lines}) {
        const auto text = parse(bytes);
        EXPECT_THAT(text.refusals, IsEmpty());
        ASSERT_THAT(text.sections, SizeIs(1));
        EXPECT_EQ(text.sections[0].entries.at(0).value, makeTextValue(L"\u00fc", L"\u4e2d"));
    }
}

TEST(RegistryTextFile, TheOlderVersionHoldsItsTextsInBytes) {
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

TEST(RegistryTextFile, EveryKindOfValueIsTaken) {
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

TEST(RegistryTextFile, QuotesAndBackslashesAreEscapedAndNothingElse) {
    EXPECT_EQ(valueOf(R"("a\"b"="C:\\new\\\"x\"")"), makeTextValue(L"a\"b", L"C:\\new\\\"x\""));
    EXPECT_EQ(valueOf(R"("a"="C:\new")"), makeTextValue(L"a", L"C:\\new"));
    EXPECT_EQ(valueOf(R"("a=b;c]"="[x] ; no comment")"), makeTextValue(L"a=b;c]", L"[x] ; no comment"));
}

TEST(RegistryTextFile, ATextMaySpanLines) {
    const auto entries = entriesOf("\"a\"=\"one\r\n[two]\r\n\"\r\n\"b\"=\"c\"\r\n");
    ASSERT_THAT(entries, SizeIs(2));
    EXPECT_EQ(entries[0].value, makeTextValue(L"a", L"one\r\n[two]\r\n"));
    EXPECT_EQ(entries[1].line, 7U);
}

TEST(RegistryTextFile, BytesContinueBehindABackslashOverCommentsToo) {
    const std::vector<std::uint8_t> expected{1, 2, 3, 4};
    EXPECT_EQ(valueOf("\"a\"=hex:01,02,\\\r\n  03,\\\r\n  04").data, expected);
    EXPECT_EQ(valueOf("\"a\"=hex:01,02,\\ ; first\r\n; second\r\n  03,04").data, expected);
    EXPECT_EQ(valueOf("\"a\"=hex:\\\r\n  01,02,03,04").data, expected);
    EXPECT_EQ(entriesOf("\"a\"=hex:01,\\\r\n\r\n\"b\"=\"c\"\r\n").size(), 2U);
    EXPECT_EQ(valueOf("\"a\"=hex:01,\\").data, std::vector<std::uint8_t>{1});
}

TEST(RegistryTextFile, BlanksAndCommentsStandAnywhereAroundValues) {
    const auto entries = entriesOf("; comment\r\n\r\n  \"a\" = \"b\" ; comment\r\n\t@ = dword:1;c\r\n;\r\n");
    ASSERT_THAT(entries, SizeIs(2));
    EXPECT_EQ(entries[0].value, makeTextValue(L"a", L"b"));
    EXPECT_EQ(entries[1].value, makeNumberValue(L"", 1));
}

TEST(RegistryTextFile, DeletionsOfValuesAndKeysAreTaken) {
    const auto text =
        parse(header + "[-HKEY_CURRENT_USER\\Old]\r\n\r\n[HKEY_CURRENT_USER\\K]\r\n\"gone\"=-\r\n@=-\r\n");
    EXPECT_THAT(text.refusals, IsEmpty());
    ASSERT_THAT(text.sections, SizeIs(2));
    EXPECT_TRUE(text.sections[0].deletion);
    EXPECT_EQ(text.sections[0].path, L"Old");
    EXPECT_FALSE(text.sections[1].deletion);
    ASSERT_THAT(text.sections[1].entries, SizeIs(2));
    EXPECT_TRUE(text.sections[1].entries[0].deletion);
    EXPECT_EQ(text.sections[1].entries[0].value.name, L"gone");
    EXPECT_EQ(text.sections[1].entries[1].value.name, L"");
}

TEST(RegistryTextFile, KeysMayHoldBracketsAndSurplusSeparators) {
    const auto text =
        parse(header + "[HKCU\\a[1]\\b]] ; c\r\n[hkey_current_user\\\\x\\\\y\\]\r\n[HKEY_CURRENT_USER]\r\n");
    EXPECT_THAT(text.refusals, IsEmpty());
    ASSERT_THAT(text.sections, SizeIs(3));
    EXPECT_EQ(text.sections[0].path, L"a[1]\\b]");
    EXPECT_EQ(text.sections[1].path, L"x\\y");
    EXPECT_EQ(text.sections[2].path, L"");
}

TEST(RegistryTextFile, KeysOfOtherRootsAreRejectedWithTheirValues) {
    const std::string lines = header + "[HKEY_LOCAL_MACHINE\\K]\r\n\"a\"=\"b\"\r\n[HKEY_USERS\\K]\r\n[K]\r\n"
                                       "[HKEY_CURRENT_USERS\\K]\r\n[HKEY_CURRENT_USER\\K]\r\n\"c\"=\"d\"\r\n";
    const auto text = parse(lines);
    ASSERT_THAT(text.refusals, SizeIs(5));
    EXPECT_EQ(text.refusals[0].line, 3U);
    EXPECT_EQ(text.refusals[0].reason, "a key of another root");
    EXPECT_EQ(text.refusals[1].line, 4U);
    EXPECT_EQ(text.refusals[1].reason, "a value below a refused key");
    ASSERT_THAT(text.sections, SizeIs(1));
    EXPECT_THAT(text.sections[0].entries, SizeIs(1));
    EXPECT_THAT(parseRegistryText(lines, HKEY_LOCAL_MACHINE).sections, SizeIs(1));
}

TEST(RegistryTextFile, TooDeepAndTooLongKeysAndWholeRootsAreRejected) {
    std::string deep = "[HKEY_CURRENT_USER";
    for (int i = 0; i < 512; ++i) {
        deep += "\\k";
    }
    const auto text = parse(header + deep + "]\r\n" + deep + "\\k]\r\n[HKCU\\" + std::string(255, 'n') +
                            "]\r\n[HKCU\\" + std::string(256, 'n') + "\\x]\r\n[-HKCU]\r\n");
    EXPECT_THAT(text.sections, SizeIs(2));
    ASSERT_THAT(text.refusals, SizeIs(3));
    EXPECT_EQ(text.refusals[0].line, 4U);
    EXPECT_EQ(text.refusals[1].line, 6U);
    EXPECT_EQ(text.refusals[2].line, 7U);
}

TEST(RegistryTextFile, AValueOfADeletedKeyIsRejected) {
    const auto text = parse(header + "[-HKCU\\K]\r\n\"a\"=\"b\"\r\n");
    ASSERT_THAT(text.refusals, SizeIs(1));
    EXPECT_EQ(text.refusals[0].line, 4U);
    EXPECT_THAT(text.sections.at(0).entries, IsEmpty());
}

TEST(RegistryTextFile, OnlyTheTwoVersionsAreRegistryFiles) {
    for (const std::string bytes : {"", "\n", "Windows Registry Editor Version 6.00\r\n", "REGEDIT\r\n", "<xml/>",
                                    "\r\nREGEDIT4\r\n", "\xFE\xFF\0R", "\xFF\xFE"}) {
        const auto text = parse(bytes);
        EXPECT_THAT(text.sections, IsEmpty());
        ASSERT_THAT(text.refusals, SizeIs(1)) << bytes;
        EXPECT_EQ(text.refusals[0].line, 1U);
    }
}

TEST(RegistryTextFile, EachMalformedLineIsRejectedWithItsNumber) {
    using Fault = std::pair<std::size_t, std::string>;
    EXPECT_EQ(refusalOf("rubbish\r\n"), Fault(4, "neither a key nor a value nor a comment"));
    EXPECT_EQ(refusalOf("\"a\r\n"), Fault(4, "the name has no closing quote"));
    EXPECT_EQ(refusalOf("\"a\" \"b\"\r\n"), Fault(4, "no \"=\" behind the name"));
    EXPECT_EQ(refusalOf("\"a\"\r\n"), Fault(4, "no \"=\" behind the name"));
    EXPECT_EQ(refusalOf("\"a\"=b\r\n"), Fault(4, "a kind of value that is not known"));
    EXPECT_EQ(refusalOf("\"a\"=\r\n"), Fault(4, "a kind of value that is not known"));
    EXPECT_EQ(refusalOf("\"a\"=\"b\r\n\r\n"), Fault(4, "the value has no closing quote"));
    EXPECT_EQ(refusalOf("\"a\"=\"b\" c\r\n"), Fault(4, "text behind the value"));
    EXPECT_EQ(refusalOf("\"a\"=- c\r\n"), Fault(4, "text behind the value"));
    EXPECT_EQ(refusalOf("\"a\"=dword:\r\n").first, 4U);
    EXPECT_EQ(refusalOf("\"a\"=dword:123456789\r\n").first, 4U);
    EXPECT_EQ(refusalOf("\"a\"=dword:xyz\r\n").first, 4U);
    EXPECT_EQ(refusalOf("\"a\"=dword:12,34\r\n"), Fault(4, "text behind the value"));
    EXPECT_EQ(refusalOf("\"a\"=hex(x):00\r\n"), Fault(4, "the kind between brackets is no number"));
    EXPECT_EQ(refusalOf("\"a\"=hex(2:00\r\n"), Fault(4, "the kind between brackets is no number"));
    EXPECT_EQ(refusalOf("\"a\"=hex 00\r\n"), Fault(4, "no \":\" behind the kind"));
    EXPECT_EQ(refusalOf("\"a\"=hex:001\r\n"), Fault(4, "a byte of two hexadecimal digits is missing"));
    EXPECT_EQ(refusalOf("\"a\"=hex:,\r\n"), Fault(4, "a byte of two hexadecimal digits is missing"));
    EXPECT_EQ(refusalOf("\"a\"=hex:00 01\r\n"), Fault(4, "bytes that are not separated by commas"));
    EXPECT_EQ(refusalOf("\"a\"=hex:00,\\ 01\r\n"), Fault(4, "text behind the sign of continuation"));
    EXPECT_EQ(refusalOf("[HKCU\\K\r\n"), Fault(4, "the key has no closing bracket"));
    EXPECT_EQ(refusalOf("[HKCU\\K] x\r\n"), Fault(4, "the key has no closing bracket"));
    EXPECT_EQ(refusalOf("[HKCU\\K" + std::string(1, '\0') + "]\r\n"), Fault(4, "a zero in the name of a key"));
}

TEST(RegistryTextFile, AnUnfinishedValueDoesNotHideTheKeyBelowIt) {
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

TEST(RegistryTextFile, ATextMayContainALineWithABracket) {
    EXPECT_EQ(decodeRegistryText(valueOf("\"a\"=\"one\r\n[two]\r\n\"").data), L"one\r\n[two]\r\n");
}

TEST(RegistryTextFile, NoKeyIsLeftAfterAllWereCutBetweenMalformedLines) {
    const auto bytes =
        header + "[X\r\n\"a\"=\"abc\r\n[HKCU\\x]\r\ndef\" rubbish\r\n[X\r\n\";\"=\"x\r\n[HKCU\\y]\r\n\"\r\n";
    EXPECT_THAT(parse(cutRegistryText(bytes, parse(bytes).sections)).sections, IsEmpty());
}

TEST(RegistryTextFile, ABrokenValueTakesItsContinuationAlong) {
    EXPECT_EQ(refusalOf("\"a\"=hex:00,\\\r\n  zz,\\\r\n  01,\\\r\n  02\r\n\"b\"=\"c\"\r\n").first, 4U);
}

TEST(RegistryTextFile, AValueBeforeTheFirstKeyIsRejected) {
    const auto text = parse(header + "\"a\"=\"b\"\r\n");
    ASSERT_THAT(text.refusals, SizeIs(1));
    EXPECT_EQ(text.refusals[0].reason, "a value before the first key");
}

const std::string broken = header + "[HKCU\\A]\r\n\"a\"=\"1\"\r\n\"b\"=oops\r\n\"c\"=\"3\"\r\n[HKCU\\B]\r\n?\r\n";

TEST(RegistryTextFile, AMalformedLineDoesNotEndTheReading) {
    const auto text = parse(broken);
    ASSERT_THAT(text.sections, SizeIs(2));
    EXPECT_THAT(text.sections[0].entries, SizeIs(2));
    EXPECT_THAT(text.refusals, ElementsAre(testing::Field(&RegistryTextRefusal::line, 5U),
                                           testing::Field(&RegistryTextRefusal::line, 8U)));
}

TEST(RegistryTextFile, ValuesBelowAMalformedKeyAreRejectedUpToTheNextValidKey) {
    for (const std::string malformed : {"[HKCU\\B", "HKEY_CURRENT_USER\\B]", "HKEY_CURENT_USER\\B", "{HKCU\\B}",
                                        "-[HKCU\\B]", "Software\\B]", "[HKEY_CURRENT_USERS\\B]"}) {
        const auto text = parse(header + "[HKCU\\A]\r\n\"a\"=\"1\"\r\n" + malformed +
                                "\r\n\"b\"=\"2\"\r\nrubbish\r\n\"b\"=-\r\n[HKCU\\C]\r\n\"c\"=\"3\"\r\n");
        ASSERT_THAT(text.sections, SizeIs(2)) << malformed;
        EXPECT_EQ(text.sections[0].lastLine, 4U) << malformed;
        ASSERT_THAT(text.sections[0].entries, SizeIs(1)) << malformed;
        ASSERT_THAT(text.sections[1].entries, SizeIs(1)) << malformed;
        EXPECT_EQ(text.sections[1].entries[0].value.name, L"c") << malformed;
        ASSERT_THAT(text.refusals, SizeIs(4)) << malformed;
        EXPECT_EQ(text.refusals[0].line, 5U) << malformed;
        EXPECT_EQ(text.refusals[1].reason, "a value below a refused key") << malformed;
        EXPECT_EQ(text.refusals[3].reason, "a value below a refused key") << malformed;
    }
}

TEST(RegistryTextFile, ALineThatNamesNoKeyLeavesTheValuesBelowItToTheirKey) {
    const auto text = parse(header + "[HKCU\\A]\r\nTheme=[dark]\r\n\"a\"=\"1\"\r\n");
    ASSERT_THAT(text.refusals, SizeIs(1));
    EXPECT_EQ(text.refusals[0].reason, "neither a key nor a value nor a comment");
    EXPECT_THAT(text.sections.at(0).entries, SizeIs(1));
}

TEST(RegistryTextFile, AValueThatTheClientCannotReadIsRejectedAndTheNextOneIsNot) {
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

TEST(RegistryTextFile, ReasonsNeverQuoteTheFile) {
    const auto text = parse(header + "[HKCU\\K]\r\n\"BDIConnectionPassword\"=swordfish\r\nswordfish\r\n[swordfish\r\n");
    EXPECT_THAT(text.refusals, SizeIs(3));
    for (const auto& refusal : text.refusals) {
        EXPECT_EQ(refusal.reason.find("swordfish"), std::string::npos);
    }
}

TEST(RegistryTextFile, FormattedSectionsReadBackAsTheyWere) {
    const auto text = parse(header + "[-HKCU\\Old]\r\n[HKCU\\K]\r\n@=\"d \\\"x\\\" C:\\\\y\"\r\n\"line\"=\"a\r\nb\"\r\n"
                                     "\"n\"=dword:0000000a\r\n\"x\"=-\r\n\"h\"=hex:01,ff\r\n\"e\"=hex(2):25,00\r\n"
                                     "\"none\"=hex(0):\r\n\"odd\"=hex(1):41\r\n\"short\"=hex(4):01\r\n"
                                     "[HKCU]\r\n\"r\"=\"1\"\r\n");
    ASSERT_THAT(text.refusals, IsEmpty());
    const auto again = parse(formatRegistryText(text.sections));
    EXPECT_THAT(again.refusals, IsEmpty());
    ASSERT_EQ(again.sections.size(), text.sections.size());
    for (std::size_t i = 0; i < again.sections.size(); ++i) {
        EXPECT_EQ(again.sections[i].path, text.sections[i].path);
        EXPECT_EQ(again.sections[i].deletion, text.sections[i].deletion);
        ASSERT_EQ(again.sections[i].entries.size(), text.sections[i].entries.size());
        for (std::size_t j = 0; j < again.sections[i].entries.size(); ++j) {
            EXPECT_EQ(again.sections[i].entries[j].value, text.sections[i].entries[j].value);
            EXPECT_EQ(again.sections[i].entries[j].deletion, text.sections[i].entries[j].deletion);
        }
    }
}

TEST(RegistryTextFile, FormattingWritesWhatAnAdministratorWouldWrite) {
    const auto text = parse(header + "[HKCU\\K]\r\n\"n\"=dword:a\r\n\"t\"=\"x\"\r\n\"gone\"=-\r\n");
    EXPECT_EQ(formatRegistryText(text.sections), "Windows Registry Editor Version 5.00\r\n"
                                                 "\r\n"
                                                 "[HKEY_CURRENT_USER\\K]\r\n"
                                                 "\"n\"=dword:0000000a\r\n"
                                                 "\"t\"=\"x\"\r\n"
                                                 "\"gone\"=-\r\n");
}

TEST(RegistryTextFile, CuttingLeavesEveryOtherByte) {
    const std::string first = "[HKCU\\A]\n\"a\"=\"\xFF broken utf-8\"\r\n; comment\n";
    const std::string second = "[HKCU\\B]\r\n\"b\"=\"x\r\n[y]\"\r\n\r\n";
    const std::string third = "[HKCU\\C]\n\"c\"=dword:1";
    const auto bytes = header + first + second + third;
    const auto text = parse(bytes);
    ASSERT_THAT(text.sections, SizeIs(3));
    EXPECT_EQ(cutRegistryText(bytes, {}), bytes);
    EXPECT_EQ(cutRegistryText(bytes, std::span(text.sections).subspan(1, 1)), header + first + third);
    EXPECT_EQ(cutRegistryText(bytes, text.sections), header);
}

TEST(RegistryTextFile, CuttingKeepsUtf16AndItsMark) {
    const std::wstring start = L"Windows Registry Editor Version 5.00\r\n";
    const std::wstring end = L"[HKCU\\B]\r\n\"b\"=\"\u00fc\"\r\n";
    const auto bytes = toUtf16File(start + L"[HKCU\\A]\r\n\"a\"=\"1\"\r\n" + end);
    const auto text = parse(bytes);
    ASSERT_THAT(text.sections, SizeIs(2));
    EXPECT_EQ(cutRegistryText(bytes, std::span(text.sections).first(1)), toUtf16File(start + end));
}

TEST(RegistryTextFile, ReadingTimeGrowsWithTheSizeAlone) {
    // A parser with backtracking or lookahead would read each of these texts in quadratic time.
    std::string openQuotes = header + "[HKCU\\K]\r\n";
    std::string brackets = header;
    std::string continued = header + "[HKCU\\K]\r\n";
    for (int i = 0; i < 100000; ++i) {
        openQuotes += "\"a\"=\"b\r\n";
        brackets += "[]]]]]]]]]x\r\n";
        continued += "\"a\"=hex:zz,\\\r\n";
    }
    const auto start = std::chrono::steady_clock::now();
    parse(openQuotes);
    parse(brackets);
    parse(continued);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
}

TEST(RegistryTextFile, AHundredThousandValuesAreTaken) {
    std::string lines = header + "[HKCU\\K]\r\n";
    for (int i = 0; i < 100000; ++i) {
        lines += "\"Key" + std::to_string(i) + "\"=\"value " + std::to_string(i) + "\"\r\n";
    }
    const auto text = parse(lines);
    EXPECT_THAT(text.refusals, IsEmpty());
    ASSERT_THAT(text.sections, SizeIs(1));
    const auto& entries = text.sections[0].entries;
    ASSERT_EQ(entries.size(), 100000U);
    EXPECT_EQ(entries[99999].value, makeTextValue(L"Key99999", L"value 99999"));
}

} // namespace
