#include "XmlTestSupport.h"

#include <featuresets/adapters/config/XmlReader.h>
#include <featuresets/adapters/config/XmlWriter.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using ZelUnified::XmlWriter;

TEST(XmlWriter, WritesAnIndentedUtf8Document) {
    XmlWriter writer;
    ASSERT_TRUE(writer.isReady());
    writer.startElement("a");
    writer.startElement("b");
    writer.writeAttribute("k", "<&>\"\t\r\n\xC3\xA9");
    writer.endElement();
    writer.writeElement("c", "<&>\"\t\r\n\xC3\xA9");
    writer.writeElement("d", "");
    EXPECT_EQ(writer.finish(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>\n"
                               " <b k=\"&lt;&amp;&gt;&quot;&#9;&#13;&#10;\xC3\xA9\"/>\n"
                               " <c>&lt;&amp;&gt;&quot;\t&#13;\n\xC3\xA9</c>\n <d></d>\n</a>\n");
}

TEST(XmlWriter, LeavesAnElementWithoutANameOut) {
    XmlWriter writer;
    writer.startElement("a");
    writer.writeElement("", "x");
    writer.writeElement("b", "y");
    EXPECT_EQ(writer.finish(), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<a>\n <b>y</b>\n</a>\n");
}

TEST(XmlWriter, IsNotReadyWithoutMemory) {
    const xml_test::XmlMemoryLimit none(0);
    EXPECT_FALSE(XmlWriter().isReady());
}

TEST(XmlWriter, NeverGivesADocumentOutOfWhichAPartIsMissing) {
    XmlWriter writer;
    writer.startElement("a");
    for (int count = 0; count < 10'000; ++count) {
        writer.writeElement("before", "x");
    }
    {
        const xml_test::XmlMemoryLimit limit(10'000);
        writer.startElement("long");
        writer.writeAttribute("value", std::string(500'000, '<'));
        writer.endElement();
    }
    writer.writeElement("after", "x");
    EXPECT_EQ(writer.finish(), "");
}

TEST(XmlWriter, ReplacesWhatXmlCantCarry) {
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

TEST(XmlWriter, LeavesLegalTextAlone) {
    const std::string legal = "a\t\n\r \x7F \xC3\xA9 \xEF\xBF\xBD \xEF\xBF\xBC \xF0\x9F\x98\x80";
    std::string text = legal;
    EXPECT_FALSE(XmlWriter::replaceIllegalCharacters(text));
    EXPECT_EQ(text, legal);
    std::string empty;
    EXPECT_FALSE(XmlWriter::replaceIllegalCharacters(empty));
}
