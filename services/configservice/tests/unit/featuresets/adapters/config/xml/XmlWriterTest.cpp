#include "featuresets/adapters/config/xml/XmlWriter.h"

#include "XmlTestSupport.h"
#include "featuresets/adapters/config/xml/XmlReader.h"

#include <kyr/StringUtils.h>

#include <gtest/gtest.h>
#include <libxml/xmlwriter.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

using ZelUnified::XmlWriter;

TEST(XmlWriter, WritesAnIndentedUtf8Document) {
    XmlWriter writer;
    writer.startElement("a");
    writer.startElement("b");
    writer.writeAttribute("k", L"<&>\"\t\r\n\u00E9");
    writer.endElement();
    writer.writeElement("c", L"<&>\"\t\r\n\u00E9");
    writer.writeElement("d", L"");
    EXPECT_EQ(writer.finish(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>\n"
                               " <b k=\"&lt;&amp;&gt;&quot;&#9;&#13;&#10;\xC3\xA9\"/>\n"
                               " <c>&lt;&amp;&gt;&quot;\t&#13;\n\xC3\xA9</c>\n <d></d>\n</a>\n");
}

namespace {

const xmlChar* toXml(const std::string& text) {
    return reinterpret_cast<const xmlChar*>(text.c_str());
}

/// Returns the document that the library's own writer writes.
std::string writeByLibrary(XmlWriter::Declaration declaration, const std::vector<std::string>& texts) {
    const std::unique_ptr<xmlBuffer, decltype(&xmlBufferFree)> buffer(xmlBufferCreate(), &xmlBufferFree);
    xmlTextWriter* writer = xmlNewTextWriterMemory(buffer.get(), 0);
    xmlTextWriterSetIndent(writer, 1);
    if (declaration == XmlWriter::Declaration::With) {
        xmlTextWriterStartDocument(writer, nullptr, "utf-8", nullptr);
    }
    xmlTextWriterStartElement(writer, toXml("root"));
    for (const auto& text : texts) {
        xmlTextWriterStartElement(writer, toXml("entry"));
        xmlTextWriterWriteAttribute(writer, toXml("name"), toXml(text));
        xmlTextWriterWriteAttribute(writer, toXml("value"), toXml(text + text));
        xmlTextWriterEndElement(writer);
    }
    for (const auto& text : texts) {
        xmlTextWriterStartElement(writer, toXml("group"));
        xmlTextWriterWriteAttribute(writer, toXml("text"), toXml(text));
        xmlTextWriterWriteElement(writer, toXml("key"), toXml(text));
        xmlTextWriterStartElement(writer, toXml("empty"));
        xmlTextWriterEndElement(writer);
        xmlTextWriterEndElement(writer);
    }
    xmlTextWriterEndDocument(writer);
    xmlFreeTextWriter(writer);
    return reinterpret_cast<const char*>(xmlBufferContent(buffer.get()));
}

/// Returns texts with each ASCII character and some others.
std::vector<std::string> makeTexts() {
    std::vector<std::string> texts = {"",
                                      " ",
                                      "]]>",
                                      "&amp;",
                                      "\xC3\xA9\xE4\xB8\xAD\xF0\x9F\x98\x80",
                                      "Z\xC3\xA9 \xDF\xBF\xE0\xA0\x80<\xF4\x8F\xBF\xBD>\xC2\x80\t",
                                      "\xEF\xBF\xBD",
                                      std::string(20'000, 'x') + "<&>"};
    for (char character = 1; character < 127; ++character) {
        texts.emplace_back(1, character);
        XmlWriter::replaceIllegalCharacters(texts.back());
    }
    return texts;
}

} // namespace

TEST(XmlWriter, WritesWhatTheLibrarysWriterWrites) {
    const auto texts = makeTexts();
    for (const auto declaration : {XmlWriter::Declaration::With, XmlWriter::Declaration::Without}) {
        XmlWriter writer(declaration);
        writer.startElement("root");
        for (const auto& text : texts) {
            const std::wstring wide = KyrCoreUtils::toWideString(text);
            EXPECT_TRUE(writer.writeEmptyElement("entry", {{"name", wide}, {"value", wide + wide}}));
        }
        for (const auto& text : texts) {
            const std::wstring wide = KyrCoreUtils::toWideString(text);
            writer.startElement("group");
            writer.writeAttribute("text", wide);
            writer.writeElement("key", wide);
            writer.startElement("empty");
            writer.endElement();
            writer.endElement();
        }
        EXPECT_EQ(writer.finish(), writeByLibrary(declaration, texts));
    }
}

TEST(XmlWriter, ReturnsFalseIfItReplacedACharacter) {
    XmlWriter writer(XmlWriter::Declaration::Without);
    writer.startElement("a");
    EXPECT_TRUE(writer.writeAttribute("b", L"<\u00E9>"));
    EXPECT_FALSE(writer.writeAttribute("c", L"x\u0001"));
    EXPECT_TRUE(writer.writeElement("d", L"\u00E9"));
    EXPECT_FALSE(writer.writeElement("e", L"\uFFFE"));
    EXPECT_FALSE(writer.writeElement("f", std::wstring(1, L'\0')));
    EXPECT_EQ(writer.finish(), "<a b=\"&lt;&#xE9;&gt;\" c=\"x&#xFFFD;\">\n <d>\xC3\xA9</d>\n"
                               " <e>\xEF\xBF\xBD</e>\n <f>\xEF\xBF\xBD</f>\n</a>\n");
}

TEST(XmlWriter, ReturnsFalseIfItReplacedACharacterOfAnyAttribute) {
    XmlWriter writer(XmlWriter::Declaration::Without);
    writer.startElement("a");
    EXPECT_FALSE(writer.writeEmptyElement("b", {{"c", L"\u0001"}, {"d", L"x"}}));
    EXPECT_FALSE(writer.writeEmptyElement("e", {{"f", L"x"}, {"g", L"\uFFFF"}}));
    EXPECT_TRUE(writer.writeEmptyElement("h", {}));
    EXPECT_EQ(writer.finish(), "<a>\n <b c=\"&#xFFFD;\" d=\"x\"/>\n <e f=\"x\" g=\"&#xFFFD;\"/>\n <h/>\n</a>\n");
}

TEST(XmlWriter, IndentsEachLevelByOneBlankAndEndsOpenElements) {
    XmlWriter writer(XmlWriter::Declaration::Without);
    writer.startElement("a");
    writer.startElement("b");
    writer.startElement("c");
    writer.endElement();
    writer.endElement();
    writer.startElement("d");
    EXPECT_EQ(writer.finish(), "<a>\n <b>\n  <c/>\n </b>\n <d/>\n</a>\n");
}

TEST(XmlWriter, OmitsAnElementWithoutAName) {
    XmlWriter writer(XmlWriter::Declaration::Without);
    writer.startElement("a");
    EXPECT_TRUE(writer.writeElement("", L"lost\u0001"));
    EXPECT_TRUE(writer.writeElement(std::string("\0b", 2), L"lost"));
    writer.writeElement(std::string("b\0c", 3), L"kept");
    EXPECT_EQ(writer.finish(), "<a>\n <b>kept</b>\n</a>\n");
}

TEST(XmlWriter, WritesTextsOfAnyLength) {
    XmlWriter writer(XmlWriter::Declaration::Without);
    std::string expected = "<a>\n";
    writer.startElement("a");
    for (std::size_t length = 1; length < 100'000; length *= 3) {
        writer.writeElement("b", std::wstring(length, L'x'));
        expected += " <b>" + std::string(length, 'x') + "</b>\n";
    }
    EXPECT_EQ(writer.finish(), expected + "</a>\n");
}

TEST(XmlWriter, IsNotReadyWithoutMemory) {
    const xml_test::XmlMemoryLimit none(0);
    EXPECT_FALSE(XmlWriter().isReady());
}

TEST(XmlWriter, ReturnsNoDocumentAfterAFailedAllocation) {
    XmlWriter writer;
    writer.startElement("a");
    {
        const xml_test::XmlMemoryLimit none(0);
        writer.writeElement("lost", L"x");
    }
    writer.writeElement("after", L"x");
    EXPECT_EQ(writer.finish(), "");
}

TEST(XmlWriter, ReturnsNoDocumentIfItsRootWasNotStarted) {
    XmlWriter writer;
    {
        const xml_test::XmlMemoryLimit none(0);
        writer.startElement("a");
    }
    EXPECT_TRUE(writer.writeEmptyElement("after", {{"b", L"\u0001"}}));
    EXPECT_EQ(writer.finish(), "");
}

TEST(XmlWriter, ReplacesIllegalCharacters) {
    const std::string mark = "\xEF\xBF\xBD";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {std::string("a\0b", 3), "a" + mark + "b"},
        {"\x01", mark},
        {"\x1F\x1F", mark + mark},
        {"x\xEF\xBF\xBE", "x" + mark},
        {"\xEF\xBF\xBFy", mark + "y"},
    };
    for (const auto& [text, expected] : cases) {
        std::string replaced = text;
        EXPECT_TRUE(XmlWriter::replaceIllegalCharacters(replaced));
        EXPECT_EQ(replaced, expected);
        EXPECT_NE(ZelUnified::XmlReader::parseDoc("<a>" + replaced + "</a>"), nullptr);
    }
}

TEST(XmlWriter, LeavesLegalTextUnchanged) {
    const std::string legal = "a\t\n\r \x7F \xC3\xA9 \xEF\xBF\xBD \xEF\xBF\xBC \xF0\x9F\x98\x80";
    std::string text = legal;
    EXPECT_FALSE(XmlWriter::replaceIllegalCharacters(text));
    EXPECT_EQ(text, legal);
    std::string empty;
    EXPECT_FALSE(XmlWriter::replaceIllegalCharacters(empty));
}
