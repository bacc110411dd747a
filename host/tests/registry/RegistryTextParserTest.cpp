#include "RegistryTextFixture.h"

#include <chrono>

namespace {

using namespace registry_text_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

TEST(RegistryTextParser, DeletionsOfValuesAndKeysAreParsed) {
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

TEST(RegistryTextParser, KeysMayContainBracketsAndRepeatedSeparators) {
    const auto text =
        parse(header + "[HKCU\\a[1]\\b]] ; c\r\n[hkey_current_user\\\\x\\\\y\\]\r\n[HKEY_CURRENT_USER]\r\n");
    EXPECT_THAT(text.refusals, IsEmpty());
    ASSERT_THAT(text.sections, SizeIs(3));
    EXPECT_EQ(text.sections[0].path, L"a[1]\\b]");
    EXPECT_EQ(text.sections[1].path, L"x\\y");
    EXPECT_EQ(text.sections[2].path, L"");
}

TEST(RegistryTextParser, KeysOfOtherRootsAreRejectedWithTheirValues) {
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

TEST(RegistryTextParser, TooDeepAndTooLongKeysAndWholeRootsAreRejected) {
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

TEST(RegistryTextParser, AValueOfADeletedKeyIsRejected) {
    const auto text = parse(header + "[-HKCU\\K]\r\n\"a\"=\"b\"\r\n");
    ASSERT_THAT(text.refusals, SizeIs(1));
    EXPECT_EQ(text.refusals[0].line, 4U);
    EXPECT_THAT(text.sections.at(0).entries, IsEmpty());
}

TEST(RegistryTextParser, AFileWithoutTheHeaderOfEitherVersionIsRejected) {
    for (const std::string bytes : {"", "\n", "Windows Registry Editor Version 6.00\r\n", "REGEDIT\r\n", "<xml/>",
                                    "\r\nREGEDIT4\r\n", "\xFE\xFF\0R", "\xFF\xFE"}) {
        const auto text = parse(bytes);
        EXPECT_THAT(text.sections, IsEmpty());
        ASSERT_THAT(text.refusals, SizeIs(1)) << bytes;
        EXPECT_EQ(text.refusals[0].line, 1U);
    }
}

TEST(RegistryTextParser, AMalformedLineIsRejectedWithItsNumber) {
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

TEST(RegistryTextParser, AValueBeforeTheFirstKeyIsRejected) {
    const auto text = parse(header + "\"a\"=\"b\"\r\n");
    ASSERT_THAT(text.refusals, SizeIs(1));
    EXPECT_EQ(text.refusals[0].reason, "a value before the first key");
}

TEST(RegistryTextParser, LinesAfterAMalformedLineAreParsed) {
    const auto text = parse(header + "[HKCU\\A]\r\n\"a\"=\"1\"\r\n\"b\"=oops\r\n\"c\"=\"3\"\r\n[HKCU\\B]\r\n?\r\n");
    ASSERT_THAT(text.sections, SizeIs(2));
    EXPECT_THAT(text.sections[0].entries, SizeIs(2));
    EXPECT_THAT(text.refusals, ElementsAre(testing::Field(&RegistryTextRefusal::line, 5U),
                                           testing::Field(&RegistryTextRefusal::line, 8U)));
}

TEST(RegistryTextParser, ValuesBelowAMalformedKeyAreRejectedUpToTheNextValidKey) {
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

TEST(RegistryTextParser, AMalformedLineThatIsNoKeyDoesNotEndItsSection) {
    const auto text = parse(header + "[HKCU\\A]\r\nTheme=[dark]\r\n\"a\"=\"1\"\r\n");
    ASSERT_THAT(text.refusals, SizeIs(1));
    EXPECT_EQ(text.refusals[0].reason, "neither a key nor a value nor a comment");
    EXPECT_THAT(text.sections.at(0).entries, SizeIs(1));
}

TEST(RegistryTextParser, ReasonsNeverQuoteTheFile) {
    const auto text = parse(header + "[HKCU\\K]\r\n\"BDIConnectionPassword\"=swordfish\r\nswordfish\r\n[swordfish\r\n");
    EXPECT_THAT(text.refusals, SizeIs(3));
    for (const auto& refusal : text.refusals) {
        EXPECT_EQ(refusal.reason.find("swordfish"), std::string::npos);
    }
}

TEST(RegistryTextParser, ParsingTimeIsLinearInTheSize) {
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

} // namespace
