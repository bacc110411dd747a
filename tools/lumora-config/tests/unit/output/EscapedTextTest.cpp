#include "output/EscapedText.h"

#include <gtest/gtest.h>

namespace lumora_config {

TEST(ToOneLine, EscapesControlCharacters) {
    EXPECT_EQ(toOneLine("a\nb\x1b[31m\tü\r\x7f"), "a\\nb\\x1b[31m\\x09ü\\x0d\\x7f");
    EXPECT_EQ(toOneLine(std::string_view("\0", 1)), "\\x00");
}

TEST(ToOneLine, EscapesC1ControlCharacters) {
    EXPECT_EQ(toOneLine("\xC2\x80 \xC2\x85 \xC2\x9B \xC2\x9F"), "\\u0080 \\u0085 \\u009b \\u009f");
    EXPECT_EQ(toOneLine("\xC2\xA0\xC3\x80"), "\xC2\xA0\xC3\x80");
}

TEST(ToOneLine, EscapesLineSeparators) {
    EXPECT_EQ(toOneLine("a\xE2\x80\xA8"
                        "b\xE2\x80\xA9"
                        "c"),
              "a\\u2028b\\u2029c");
}

TEST(ToOneLine, KeepsEveryOtherCharacter) {
    const std::string text = "a\\n ü \xDF\xBF \xE0\xA0\x80 € 漢 \xED\x9F\xBF \xEE\x80\x80 😀 \xF4\x8F\xBF\xBF";
    EXPECT_EQ(toOneLine(text), text);
}

TEST(ToOneLine, EscapesBytesThatAreNotUtf8) {
    EXPECT_EQ(toOneLine("\x9b"
                        "31m\xC0\x80\xE0\x9F\xBF"),
              "\\x9b31m\\xc0\\x80\\xe0\\x9f\\xbf");
    EXPECT_EQ(toOneLine("\xED\xA0\x80\xF4\x90\x80\x80\xF5"), "\\xed\\xa0\\x80\\xf4\\x90\\x80\\x80\\xf5");
    EXPECT_EQ(toOneLine("\xE2\x82"), "\\xe2\\x82");
    EXPECT_EQ(toOneLine("\xE2\x82x"), "\\xe2\\x82x");
    EXPECT_EQ(toOneLine("\xF0\x9F\x98 \xC3"), "\\xf0\\x9f\\x98 \\xc3");
}

TEST(ToVisibleLines, KeepsOnlyLineFeedsAndTabs) {
    EXPECT_EQ(toVisibleLines("a\n\tb\r\x1b\xC2\x9B\n"), "a\n\tb\\x0d\\x1b\\u009b\n");
}

TEST(EscapeXml, EscapesAsTheServiceWritesItsFiles) {
    EXPECT_EQ(escapeXml("a<b>&\"c'"), "a&lt;b&gt;&amp;&quot;c'");
}

TEST(EscapeHtml, EscapesTheApostropheToo) {
    EXPECT_EQ(escapeHtml("a<b>&\"c'"), "a&lt;b&gt;&amp;&quot;c&#39;");
}

TEST(MakeVisible, ReplacesControlCharactersByTheirSymbols) {
    EXPECT_EQ(makeVisible(std::wstring_view(L"a\0\x1b\x7f", 4)), L"a\x2400\x241b\x2421");
}

TEST(MakeVisible, KeepsLineBreaksTabsAndOtherLetters) {
    EXPECT_EQ(makeVisible(L"a\n\tß\x05d0"), L"a\n\tß\x05d0");
}

TEST(MakeVisible, ReplacesBidirectionalMarksByTheirNames) {
    EXPECT_EQ(makeVisible(L"abc\x202egpj.exe"), L"abc[U+202E]gpj.exe");
    EXPECT_EQ(makeVisible(L"\x200f\x2066\x2069"), L"[U+200F][U+2066][U+2069]");
}

} // namespace lumora_config
