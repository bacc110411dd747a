#include "stores/XmlKeyFinder.h"

#include <gtest/gtest.h>

namespace lumora_config {

namespace {

using Form = XmlKeyFinder::Form;

/// Returns the line of the key, or 0 if it was not found.
std::size_t lineOf(std::string_view content, const std::wstring& key, Form form) {
    const auto places = XmlKeyFinder::find(content, "file.xml", form);
    const auto place = places.find(key);
    return place == places.end() ? 0 : place->second.line;
}

} // namespace

TEST(XmlKeyFinder, FindsTheElementsInGroups) {
    constexpr auto document =
        "<?xml version=\"1.0\"?>\n<r>\n <g>\n  <A>1</A>\n  <b><c/></b>\n </g>\n <h><D/></h>\n</r>\n";
    EXPECT_EQ(lineOf(document, L"a", Form::Elements), 4U);
    EXPECT_EQ(lineOf(document, L"B", Form::Elements), 5U);
    EXPECT_EQ(lineOf(document, L"D", Form::Elements), 7U);
    EXPECT_EQ(lineOf(document, L"c", Form::Elements), 0U);
    EXPECT_EQ(lineOf(document, L"g", Form::Elements), 0U);
    EXPECT_EQ(lineOf(document, L"A", Form::UserConfig), 0U);
    EXPECT_EQ(XmlKeyFinder::find(document, "file.xml", Form::Elements).at(L"A").file, "file.xml");
}

TEST(XmlKeyFinder, FindsUserConfigElementsAtAnyDepth) {
    constexpr auto document =
        "<r>\n<USERCONFIG Name=\"A\" value=\"1\"/>\n<g><g><g>\n<userConfig value=\"1\" name='b'>\n"
        "<userConfig name=\"c\"/></userConfig></g></g></g>\n</r>";
    EXPECT_EQ(lineOf(document, L"A", Form::UserConfig), 2U);
    EXPECT_EQ(lineOf(document, L"B", Form::UserConfig), 4U);
    EXPECT_EQ(lineOf(document, L"C", Form::UserConfig), 5U);
    EXPECT_EQ(lineOf(document, L"A", Form::Both), 2U);
    EXPECT_EQ(lineOf(document, L"B", Form::Both), 0U);
}

TEST(XmlKeyFinder, TheFirstElementOfAKeyWins) {
    EXPECT_EQ(lineOf("<r><g>\n<A>1</A>\n<a>2</a>\n</g></r>", L"A", Form::Elements), 2U);
}

TEST(XmlKeyFinder, CountsLinesBeyondTheLimitOfATree) {
    std::string document = "<r>";
    for (int i = 0; i < 70000; ++i) {
        document += "<userConfig name=\"k" + std::to_string(i) + "\"/>\n";
    }
    document += "</r>";
    EXPECT_EQ(lineOf(document, L"k69999", Form::UserConfig), 70000U);
}

TEST(XmlKeyFinder, TheValueMayContainReferencesAndMarkup) {
    EXPECT_EQ(lineOf("<r><g>\n<A>&amp;&#10;<![CDATA[<B>\n]]><!-- <C> --></A>\n<D/></g></r>", L"D", Form::Elements), 4U);
}

TEST(XmlKeyFinder, WhatIsNotADocumentHasNoKeys) {
    EXPECT_TRUE(XmlKeyFinder::find("", "f", Form::Both).empty());
    EXPECT_TRUE(XmlKeyFinder::find("rubbish", "f", Form::Both).empty());
    EXPECT_TRUE(XmlKeyFinder::find("<!DOCTYPE r><r><g><A/></g></r>", "f", Form::Both).empty());
    EXPECT_EQ(lineOf("<r><g>\n<A/>\n</h><B/></r>", L"B", Form::Elements), 0U);
}

} // namespace lumora_config
