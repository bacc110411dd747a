#include <kyr/StringUtils.h>
#include <kyr/XmlNames.h>

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <array>
#include <memory>
#include <string>

namespace KyrCoreUtils {

namespace {

struct DocumentDeleter {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};

/// Returns true if the XML reader accepts `name` as the name of the root.
bool isTakenAsRoot(const std::string& name) {
    const auto text = "<" + name + "/>";
    constexpr int quietly = XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET;
    const std::unique_ptr<xmlDoc, DocumentDeleter> document(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, quietly));
    if (!document) {
        return false;
    }
    const auto* root = xmlDocGetRootElement(document.get());
    return root->properties == nullptr && name == reinterpret_cast<const char*>(root->name);
}

/// Returns true if the XML reader accepts the text in an element.
bool isTakenAsText(const std::string& content) {
    const auto text = "<a>" + content + "</a>";
    constexpr int quietly = XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET;
    const std::unique_ptr<xmlDoc, DocumentDeleter> document(
        xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, quietly));
    return document != nullptr;
}

std::wstring wideOf(char32_t c) {
    std::string text;
    if (c < 0x80) {
        text += static_cast<char>(c);
    } else if (c < 0x800) {
        text += static_cast<char>(0xC0U | (c >> 6U));
        text += static_cast<char>(0x80U | (c & 0x3FU));
    } else if (c < 0x10000) {
        text += static_cast<char>(0xE0U | (c >> 12U));
        text += static_cast<char>(0x80U | ((c >> 6U) & 0x3FU));
        text += static_cast<char>(0x80U | (c & 0x3FU));
    } else {
        text += static_cast<char>(0xF0U | (c >> 18U));
        text += static_cast<char>(0x80U | ((c >> 12U) & 0x3FU));
        text += static_cast<char>(0x80U | ((c >> 6U) & 0x3FU));
        text += static_cast<char>(0x80U | (c & 0x3FU));
    }
    return toWideString(text);
}

bool isSurrogate(char32_t c) {
    return c >= 0xD800 && c <= 0xDFFF;
}

/// Returns the next code point to test: all in the ranges where names differ, and samples of the others.
char32_t nextSample(char32_t c) {
    return c < 0x3100 || (c >= 0xD700 && c < 0x10100) ? c + 1 : c + 251;
}

} // namespace

TEST(XmlNames, IsXmlNameAgreesWithAParserOnEveryCharacter) {
    for (char32_t c = 1; c <= 0x10FFFF; c = nextSample(c)) {
        if (isSurrogate(c) || c == ':') {
            continue; // A surrogate has no UTF-8 form. A lone colon is a valid name, but the reader expects a prefix.
        }
        const auto alone = wideOf(c);
        EXPECT_EQ(isXmlName(alone), isTakenAsRoot(toString(alone))) << "U+" << std::hex << unsigned{c};
        const auto second = L"a" + alone + L"b";
        EXPECT_EQ(isXmlName(second), isTakenAsRoot(toString(second))) << "aU+" << std::hex << unsigned{c};
    }
}

TEST(XmlNames, EveryCharacterOfANameIsChecked) {
    EXPECT_TRUE(isXmlName(L"Lumora_SDK_Mode"));
    EXPECT_TRUE(isXmlName(L"prefix:name-1.2"));
    EXPECT_TRUE(isXmlName(L"Gr\u00F6\u00DFe"));
    for (const auto* text : {L"", L"a b", L"1a", L"-a", L"a/b", L"a\u00D7b", L"a\u00F7", L"a\u2028b", L"<a>",
                             L"a=\"b\"", L"a\n", L"a\uFFFE"}) {
        EXPECT_FALSE(isXmlName(text)) << toString(text);
    }
}

TEST(Unrepresentable, FindUnrepresentableAgreesWithAParserOnEveryCharacter) {
    for (char32_t c = 1; c <= 0x10FFFF; c = nextSample(c)) {
        if (isSurrogate(c) || c == '<' || c == '&') {
            continue;
        }
        const auto text = wideOf(c);
        EXPECT_EQ(!findUnrepresentable(text), isTakenAsText(toString(text))) << "U+" << std::hex << unsigned{c};
    }
}

TEST(Unrepresentable, FindsAnUnrepresentableCharacterAtEveryPosition) {
    EXPECT_FALSE(findUnrepresentable(L"Gr\u00FC\u00DFe <&> \t\r\n"));
    EXPECT_EQ(findUnrepresentable(L"ab\x01"), char32_t{1});
    EXPECT_EQ(findUnrepresentable(std::wstring(L"a\0b", 3)), char32_t{0});
    EXPECT_EQ(findUnrepresentable(L"\uFFFF"), char32_t{0xFFFF});
    const std::wstring loneSurrogate{L'a', static_cast<wchar_t>(0xD800), L'b'};
    EXPECT_EQ(findUnrepresentable(loneSurrogate), char32_t{0xD800});
}

} // namespace KyrCoreUtils
