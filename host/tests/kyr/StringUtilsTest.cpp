#include <kyr/StringUtils.h>

#include <algorithm>
#include <climits>
#include <clocale>
#include <cwchar>
#include <random>
#include <string>
#include <vector>

namespace {

using namespace KyrCoreUtils;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::IsEmpty;

/// Returns one code point as wide text, in one or two units.
std::wstring wide(char32_t value) {
    if (sizeof(wchar_t) == 2 && value > 0xFFFF) {
        return {static_cast<wchar_t>(0xD800 + ((value - 0x10000) >> 10)),
                static_cast<wchar_t>(0xDC00 + ((value - 0x10000) & 0x3FF))};
    }
    return {static_cast<wchar_t>(value)};
}

template <class Check>
void forEveryCharacter(Check check) {
    for (char32_t value = 0; value <= 0x10FFFF; ++value) {
        if (value < 0xD800 || value > 0xDFFF) {
            check(value);
        }
    }
}

TEST(ToString, WritesUtf8) {
    EXPECT_EQ(toString(L""), "");
    EXPECT_EQ(toString(L"plain"), "plain");
    EXPECT_EQ(toString(wide(0xFC) + wide(0x20AC) + wide(0x1F600)), "\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(toString(L"a\0b"s), "a\0b"s);
}

TEST(ToString, ReplacesInvalidCodePoints) {
    EXPECT_EQ(toString(L"a"s + static_cast<wchar_t>(0xD800) + L"b"), "a\xEF\xBF\xBD"
                                                                     "b");
    EXPECT_EQ(toString(L"a"s + static_cast<wchar_t>(0xDC00)), "a\xEF\xBF\xBD");
}

TEST(ToWideString, ReadsUtf8) {
    EXPECT_EQ(toWideString(""), L"");
    EXPECT_EQ(toWideString("plain"), L"plain");
    EXPECT_EQ(toWideString("\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80"), wide(0xFC) + wide(0x20AC) + wide(0x1F600));
    EXPECT_EQ(toWideString("a\0b"s), L"a\0b"s);
    std::wstring used = L"something longer";
    for (const std::string& text : {"plain"s, "\xC3\xBC"s, ""s, "\xE2\x82"s}) {
        toWideString(text, used);
        EXPECT_EQ(used, toWideString(text));
    }
}

TEST(ToWideString, ReplacesEachMaximalIllFormedPartOnce) {
    struct Case {
        std::string bytes;
        std::wstring text;
    };
    const std::wstring bad = wide(0xFFFD);
    const Case cases[] = {
        {"\x80", bad},
        {"a\xFF"
         "b",
         L"a" + bad + L"b"},
        {"\xC0\x80", bad + bad},                     // overlong
        {"\xE0\x80\x80", bad + bad + bad},           // overlong
        {"\xED\xA0\x80", bad + bad + bad},           // surrogate
        {"\xF4\x90\x80\x80", bad + bad + bad + bad}, // beyond the last code point
        {"\xE2\x82", bad},                           // truncated at the end
        {"\xE2\x82\x41", bad + L"A"},                // truncated by another character
        {"\xF0\x9F\x98", bad},
        {"\xF0\x9F\x98\xF0\x9F\x98\x80", bad + wide(0x1F600)},
        {"\xE1\x80\xE2\xF0\x91\x92\xF1\xBF\x41", bad + bad + bad + bad + L"A"},
        {"\xC3\xC3\xBC", bad + wide(0xFC)},
    };
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(toWideString(bytes), text) << testing::PrintToString(bytes);
    }
}

TEST(ToWideString, EveryCharacterRoundTripsThroughUtf8) {
    forEveryCharacter([](char32_t value) {
        const std::wstring text = wide(value);
        ASSERT_EQ(toWideString(toString(text)), text) << static_cast<unsigned>(value);
    });
}

TEST(ToWideString, DoesNotDependOnTheLocale) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    ASSERT_NE(std::setlocale(LC_ALL, "C"), nullptr);
    EXPECT_EQ(toWideString("\xC3\xBC"s), wide(0xFC));
    EXPECT_EQ(toLowercase(wide(0xDC)), wide(0xFC));
    std::setlocale(LC_ALL, before.c_str());
}

TEST(ToWideString, WritesNumbersAndBooleans) {
    EXPECT_EQ(toWideString(0), L"0");
    EXPECT_EQ(toWideString(INT_MIN), L"-2147483648");
    EXPECT_EQ(toWideString(4000000000U), L"4000000000");
    EXPECT_EQ(toWideString(true), L"true");
    EXPECT_EQ(toWideString(false), L"false");
    EXPECT_EQ(toWideString("literal"), L"literal");
}

TEST(ToLowercase, MapsByUnicodesSimpleMapping) {
    EXPECT_EQ(toLowercase(L"ABC_xyz-09"), L"abc_xyz-09");
    EXPECT_EQ(toLowercase(wide(0xC4) + wide(0x3A3) + wide(0x416)), wide(0xE4) + wide(0x3C3) + wide(0x436));
    EXPECT_EQ(toLowercase(wide(0x10400)), wide(0x10428));
    EXPECT_EQ(toLowercase(wide(0xDF)), wide(0xDF));
    EXPECT_EQ(toLowercase(wide(0x130)), L"i");
    EXPECT_EQ(toLowercase(wide(0x131)), wide(0x131));
    EXPECT_EQ(toLowercase("GR\xC3\x9C\xC3\x9F"
                          "E"s),
              "gr\xC3\xBC\xC3\x9F"
              "e");
}

TEST(ToLowercase, LeavesIllFormedTextUnchanged) {
    EXPECT_EQ(toLowercase("A\xFF\xE2\x82Z"s), "a\xFF\xE2\x82z");
    const std::wstring lone = L"A"s + static_cast<wchar_t>(0xD800) + L"Z";
    EXPECT_EQ(toLowercase(lone), L"a"s + static_cast<wchar_t>(0xD800) + L"z");
}

TEST(ToLowercase, IsIdempotentAndDoesNotChangeTheLength) {
    forEveryCharacter([](char32_t value) {
        const std::wstring text = wide(value);
        const std::wstring lower = toLowercase(text);
        ASSERT_EQ(lower.size(), text.size()) << static_cast<unsigned>(value);
        ASSERT_EQ(toLowercase(lower), lower) << static_cast<unsigned>(value);
        std::wstring inPlace = text;
        KyrCoreUtils::makeLowercase(inPlace);
        ASSERT_EQ(inPlace, lower) << static_cast<unsigned>(value);
        ASSERT_TRUE(caseInsensitiveStringEquals(text, lower)) << static_cast<unsigned>(value);
        ASSERT_EQ(toWideString(toLowercase(toString(text))), lower) << static_cast<unsigned>(value);
    });
}

TEST(CaseInsensitiveCompare, IgnoresOnlyCase) {
    EXPECT_EQ(caseInsensitiveStringCompare(L"KeY", L"kEy"), 0);
    EXPECT_EQ(caseInsensitiveStringCompare(L"", L""), 0);
    EXPECT_LT(caseInsensitiveStringCompare(L"abc", L"ABCD"), 0);
    EXPECT_GT(caseInsensitiveStringCompare(L"abcd", L"ABC"), 0);
    EXPECT_LT(caseInsensitiveStringCompare(L"A", L"b"), 0);
    EXPECT_GT(caseInsensitiveStringCompare(L"b", L"A"), 0);
    EXPECT_EQ(caseInsensitiveStringCompare(wide(0xC4), wide(0xE4)), 0);
    EXPECT_NE(caseInsensitiveStringCompare(wide(0xDF), L"ss"), 0);
    EXPECT_NE(caseInsensitiveStringCompare(wide(0x131), L"i"), 0);
}

TEST(CaseInsensitiveCompare, ComparesTheRestAfterAnEqualAsciiPrefix) {
    EXPECT_EQ(caseInsensitiveStringCompare(L"ab" + wide(0xC4), L"AB" + wide(0xE4)), 0);
    for (const std::size_t common : {0U, 1U, 3U, 4U, 5U, 7U, 8U, 40U}) {
        for (const std::wstring& begin : {std::wstring(common, L'k'), std::wstring(common, wide(0xE4).front())}) {
            EXPECT_EQ(caseInsensitiveStringCompare(begin, begin), 0);
            EXPECT_EQ(caseInsensitiveStringCompare(begin + L"aBcDe", begin + L"AbCdE"), 0);
            EXPECT_LT(caseInsensitiveStringCompare(begin, begin + L"a"), 0);
            EXPECT_GT(caseInsensitiveStringCompare(begin + L"b", begin + L"Abc"), 0);
            EXPECT_LT(caseInsensitiveStringCompare(begin + L"z", begin + wide(0x1F600)), 0);
            EXPECT_LT(caseInsensitiveStringCompare(begin + wide(0x1F600), begin + wide(0x1F601)), 0);
            EXPECT_EQ(caseInsensitiveStringCompare(begin + wide(0x10400), begin + wide(0x10428)), 0);
        }
    }
    EXPECT_GT(caseInsensitiveStringCompare(L"ab" + wide(0xC4), L"ABz"), 0);
    EXPECT_LT(caseInsensitiveStringCompare(L"ABz", L"ab" + wide(0xC4)), 0);
    EXPECT_LT(caseInsensitiveStringCompare(L"AB", L"ab" + wide(0xC4)), 0);
    EXPECT_LT(caseInsensitiveStringCompare(L"ab" + wide(0x10400) + L"A", L"AB" + wide(0x10428) + L"b"), 0);
    EXPECT_EQ(caseInsensitiveStringCompare(L"k", wide(0x212A)), 0); // the Kelvin sign
}

TEST(CaseInsensitiveCompare, SortsTheUnderscoreBeforeLetters) {
    EXPECT_LT(caseInsensitiveStringCompare(L"A_", L"AB"), 0);
    EXPECT_LT(caseInsensitiveStringCompare(L"a_", L"aB"), 0);
}

TEST(CaseInsensitiveCompare, ReadsPastAnEmbeddedNul) {
    EXPECT_NE(caseInsensitiveStringCompare(L"a\0b"s, L"a\0c"s), 0);
    EXPECT_LT(caseInsensitiveStringCompare(L"a", L"a\0"s), 0);
}

TEST(CaseInsensitiveCompare, SortsSupplementaryCharactersLast) {
    EXPECT_LT(caseInsensitiveStringCompare(wide(0xFFFD), wide(0x10000)), 0);
}

TEST(CaseInsensitiveCompare, IsAStrictWeakOrder) {
    const std::vector<std::wstring> sample = {L"",
                                              L"a",
                                              L"A",
                                              L"b",
                                              L"B",
                                              L"_",
                                              L"a_",
                                              L"AB",
                                              L"Ab",
                                              L"a\0"s,
                                              L"ss",
                                              wide(0xDF),
                                              wide(0xC4),
                                              wide(0xE4),
                                              wide(0x130),
                                              L"i",
                                              L"I",
                                              wide(0x131),
                                              wide(0x10400),
                                              wide(0x10428),
                                              wide(0xFFFD),
                                              std::wstring(1, static_cast<wchar_t>(0xD800)),
                                              std::wstring(1, static_cast<wchar_t>(0xDC00)),
                                              wide(0x212A),
                                              L"k",
                                              L"K"};
    const auto less = [](const std::wstring& a, const std::wstring& b) {
        return caseInsensitiveStringCompare(a, b) < 0;
    };
    for (const auto& a : sample) {
        EXPECT_FALSE(less(a, a));
        for (const auto& b : sample) {
            EXPECT_FALSE(less(a, b) && less(b, a));
            EXPECT_EQ(!less(a, b) && !less(b, a), caseInsensitiveStringEquals(a, b));
            for (const auto& c : sample) {
                EXPECT_TRUE(!(less(a, b) && less(b, c)) || less(a, c));
                EXPECT_TRUE(!(caseInsensitiveStringEquals(a, b) && caseInsensitiveStringEquals(b, c)) ||
                            caseInsensitiveStringEquals(a, c));
            }
        }
    }
}

TEST(CaseInsensitiveEquals, ComparesUtf8) {
    EXPECT_TRUE(caseInsensitiveStringEquals("LocalFile"s, "localfile"s));
    EXPECT_TRUE(caseInsensitiveStringEquals("\xC3\x84"s, "\xC3\xA4"s));
    EXPECT_TRUE(caseInsensitiveStringEquals("\xE2\x84\xAA"s, "k"s)); // the Kelvin sign
    EXPECT_FALSE(caseInsensitiveStringEquals("abc"s, "abcd"s));
    EXPECT_FALSE(caseInsensitiveStringEquals("a\0b"s, "a\0c"s));
}

TEST(CaseInsensitiveEquals, ComparesIllFormedBytesUnchanged) {
    EXPECT_TRUE(caseInsensitiveStringEquals("a\xFF"s, "A\xFF"s));
    EXPECT_FALSE(caseInsensitiveStringEquals("\xFF"s, "\xFE"s));
    EXPECT_FALSE(caseInsensitiveStringEquals("\xFF"s, "\xC3\xBF"s));
    EXPECT_FALSE(caseInsensitiveStringEquals("\xFF"s, "\xEF\xBF\xBD"s));
    EXPECT_TRUE(caseInsensitiveStringEquals("\xE2\x82"s, "\xE2\x82"s));
    EXPECT_FALSE(caseInsensitiveStringEquals("\xE2\x82"s, "\xE2"s));
}

TEST(CaseInsensitiveFind, ReturnsThePositionInUnits) {
    EXPECT_EQ(caseInsensitiveFind(L"TftpConfigStore", L"tftp"), 0);
    EXPECT_EQ(caseInsensitiveFind(L"myTFTP", L"tftp"), 2);
    EXPECT_EQ(caseInsensitiveFind(L"aab", L"AB"), 1);
    EXPECT_EQ(caseInsensitiveFind(L"abc", L"d"), -1);
    EXPECT_EQ(caseInsensitiveFind(L"ab", L"abc"), -1);
    EXPECT_EQ(caseInsensitiveFind(L"", L"a"), -1);
    EXPECT_EQ(caseInsensitiveFind(L"abc", L""), 0);
    EXPECT_EQ(caseInsensitiveFind(L"", L""), 0);
    EXPECT_EQ(caseInsensitiveFind(wide(0x1F600) + L"X", L"x"), static_cast<std::ptrdiff_t>(wide(0x1F600).size()));
}

TEST(MatchesWildcards, IgnoresCase) {
    EXPECT_TRUE(matchesWildcards(L"ServicesDomain", L"servicesdomain"));
    EXPECT_FALSE(matchesWildcards(L"ServicesDomain", L"services"));
}

TEST(MatchesWildcards, AStarMatchesAnyText) {
    EXPECT_TRUE(matchesWildcards(L"", L"*"));
    EXPECT_TRUE(matchesWildcards(L"abc", L"*"));
    EXPECT_TRUE(matchesWildcards(L"abc", L"a*c"));
    EXPECT_TRUE(matchesWildcards(L"abcbc", L"a*bc"));
    EXPECT_TRUE(matchesWildcards(L"abc", L"**abc**"));
    EXPECT_FALSE(matchesWildcards(L"abc", L"*d*"));
    EXPECT_FALSE(matchesWildcards(L"abc", L"*ab"));
}

TEST(MatchesWildcards, AQuestionMarkMatchesOneCharacter) {
    EXPECT_TRUE(matchesWildcards(L"abc", L"a?c"));
    EXPECT_FALSE(matchesWildcards(L"abc", L"abc?"));
    EXPECT_FALSE(matchesWildcards(L"abc", L""));
}

TEST(MatchesWildcards, MatchesAPatternOfManyStarsQuickly) {
    const std::wstring text(200, L'a');
    std::wstring pattern;
    for (int i = 0; i < 60; ++i) {
        pattern += L"a*";
    }
    EXPECT_FALSE(matchesWildcards(text, pattern + L'b'));
}

TEST(Trim, RemovesTheSixAsciiBlanksFromBothEnds) {
    EXPECT_EQ(trim(" \t\n\v\f\ra b\r\f\v\n\t "s), "a b");
    EXPECT_EQ(trim(L" \t\n\v\f\ra b\r\f\v\n\t "s), L"a b");
    EXPECT_EQ(trim(" \n "s), "");
    EXPECT_EQ(trim(""s), "");
    EXPECT_EQ(trim("\0 a"s), "\0 a"s);
    EXPECT_EQ(trim(wide(0xA0) + L"a" + wide(0x2003)), wide(0xA0) + L"a" + wide(0x2003));
    EXPECT_EQ(trim("\x08\x0E"s), "\x08\x0E");
    EXPECT_EQ(KyrCoreUtils::trimmedView(" \t a b\r"), "a b");
    EXPECT_EQ(KyrCoreUtils::trimmedView(" "), "");
}

TEST(Trim, TrimLeftKeepsBlanksAtTheEnd) {
    EXPECT_EQ(trimleft(" \t# a "s), "# a ");
    EXPECT_EQ(trimleft(L"\r\n a "s), L"a ");
    EXPECT_EQ(trimleft("  "s), "");
}

std::vector<std::string> splitText(std::string_view text, std::string_view separator) {
    std::vector<std::string> pieces{"left over"};
    split(text, pieces, separator);
    return pieces;
}

TEST(Split, KeepsEmptyPieces) {
    EXPECT_THAT(splitText("a:b", ":"), ElementsAre("a", "b"));
    EXPECT_THAT(splitText("key:a:", ":"), ElementsAre("key", "a", ""));
    EXPECT_THAT(splitText("key:fe80::1", ":"), ElementsAre("key", "fe80", "", "1"));
    EXPECT_THAT(splitText("k=", "="), ElementsAre("k", ""));
    EXPECT_THAT(splitText(":", ":"), ElementsAre("", ""));
    EXPECT_THAT(splitText(":a", ":"), ElementsAre("", "a"));
    EXPECT_THAT(splitText("a", ":"), ElementsAre("a"));
}

TEST(Split, ClearsItsOutput) {
    EXPECT_THAT(splitText("", ":"), IsEmpty());
}

TEST(Split, TreatsTheSeparatorAsOneText) {
    EXPECT_THAT(splitText("a, b,c, d", ", "), ElementsAre("a", "b,c", "d"));
    EXPECT_THAT(splitText("aaa", "aa"), ElementsAre("", "a"));
    EXPECT_THAT(splitText("abc", ""), ElementsAre("abc"));
    EXPECT_THAT(splitText("", ""), IsEmpty());
}

TEST(Split, SplitsWideText) {
    std::vector<std::wstring> pieces{L"left over"};
    split(L"a;;b;"s, pieces, L";"s);
    EXPECT_THAT(pieces, ElementsAre(L"a", L"", L"b", L""));
}

TEST(Split, AcceptsAnElementOfTheOutputAsInput) {
    std::vector<std::string> pieces{"a:b"};
    split(pieces[0], pieces, ":");
    EXPECT_THAT(pieces, ElementsAre("a", "b"));
}

TEST(ToBool, ReadsTrue1YesAndOnAsTrueIgnoringCaseAndBlanks) {
    for (const std::string yes : {"true", "TRUE", "True", " true\r\n", "1", "yes", "YES", "on", "On", "\ton "}) {
        EXPECT_TRUE(toBool(yes)) << yes;
        EXPECT_TRUE(toBool(toWideString(yes))) << yes;
    }
    for (const std::string no :
         {"", " ", "false", "0", "no", "off", "2", "11", "truely", "tru", "t", "y", "true true"}) {
        EXPECT_FALSE(toBool(no)) << no;
        EXPECT_FALSE(toBool(toWideString(no))) << no;
    }
    EXPECT_FALSE(toBool("true\0"s));
}

TEST(ToInt, ReadsWholeDecimalNumbersInRange) {
    EXPECT_EQ(toInt(L"0", 7), 0);
    EXPECT_EQ(toInt(L" 42\n", 7), 42);
    EXPECT_EQ(toInt(L"-42", 7), -42);
    EXPECT_EQ(toInt(L"+42", 7), 42);
    EXPECT_EQ(toInt(L"0042", 7), 42);
    EXPECT_EQ(toInt(L"2147483647", 7), INT_MAX);
    EXPECT_EQ(toInt(L"-2147483648", 7), INT_MIN);
}

TEST(ToInt, ReturnsTheFallbackForAnyOtherText) {
    for (const std::wstring& text :
         {L""s, L" "s, L"-"s, L"+"s, L"+-1"s, L"4 2"s, L"42a"s, L"a42"s, L"0x10"s, L"1.0"s, L"1e3"s, L"2147483648"s,
          L"-2147483649"s, L"99999999999999999999999999"s, L"4\0"s, wide(0x664)}) {
        EXPECT_EQ(toInt(text, 7), 7) << toString(text);
    }
}

TEST(CaseInsensitiveCompare, EqualsTheOrderOfTheLowercaseTexts) {
    std::mt19937 chance(3); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same texts in each run
    const std::u32string alphabet = U"aAbBzZ_[@`{\0\u0080\u00C4\u00E4\u212A\U00010400\U00010428\uFFFD"s;
    const auto someText = [&](std::size_t length) {
        std::wstring text;
        for (; length > 0; --length) {
            text += wide(chance() % 3 == 0 ? alphabet[chance() % alphabet.size()] : alphabet[chance() % 4]);
        }
        return text;
    };
    const auto sign = [](int number) { return (number > 0) - (number < 0); };
    for (int round = 0; round < 20000; ++round) {
        const std::wstring beginning = someText(chance() % 14);
        const std::wstring a = beginning + someText(chance() % 4);
        const std::wstring b = (chance() % 2 == 0 ? toLowercase(beginning) : beginning) + someText(chance() % 4);
        // Where wide units hold a code point, all characters of the alphabet are one unit each; elsewhere UTF-8 has the
        // same order.
        const int expected = toString(toLowercase(a)).compare(toString(toLowercase(b)));
        ASSERT_EQ(sign(caseInsensitiveStringCompare(a, b)), sign(expected)) << toString(a) << " and " << toString(b);
    }
}

TEST(ToWideString, OverwritesTheContentOfAReusedString) {
    std::wstring reused;
    for (const std::string text : {"0123456789", "abc", "", "\xC3\xA4", "ascii again, and longer than before",
                                   "\xC3\xA4 \xF0\x90\x90\x80 \xFF and longer than all that came before", "x"}) {
        toWideString(text, reused);
        EXPECT_EQ(reused, toWideString(text));
        EXPECT_EQ(reused.size(), std::wcslen(reused.c_str()));
    }
    EXPECT_EQ(reused, L"x");
}

} // namespace
