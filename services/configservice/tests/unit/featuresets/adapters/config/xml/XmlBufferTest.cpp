#include "featuresets/adapters/config/xml/XmlBuffer.h"

#include "XmlTestSupport.h"
#include "featuresets/adapters/config/xml/XmlReader.h"

#include <gtest/gtest.h>

#include <string>

namespace ZelUnified {

TEST(XmlBuffer, DoesNotGrowWhenItsNodeIsWritten) {
    std::string escaped;
    for (int i = 0; i < 20'000; ++i) {
        escaped += "&amp;";
    }
    for (const std::string& body :
         {std::string("<k/>"), "<k a='" + escaped + "'>" + escaped + "</k>",
          std::string("<n:k xmlns:n='u'><l><m>x</m></l></n:k>"),
          std::string("<k>\xC3\xA9<!-- note --><![CDATA[<>]]></k>"), "<k>" + std::string(100'000, '\'') + "</k>"}) {
        const auto document = XmlReader::parseDoc("<r>" + body + "</r>");
        ASSERT_NE(document, nullptr) << body.substr(0, 40);
        xmlNode* const node = xmlDocGetRootElement(document.get());
        const auto buffer = makeXmlBuffer(*node);
        ASSERT_NE(buffer, nullptr);
        const auto* const content = buffer->content;
        const auto size = buffer->size;
        EXPECT_GT(xmlNodeDump(buffer.get(), document.get(), node, 0, 0), 0);
        EXPECT_EQ(buffer->content, content) << body.substr(0, 40);
        EXPECT_EQ(buffer->size, size) << body.substr(0, 40);
    }
}

TEST(XmlBuffer, IsNullWithoutMemory) {
    const xml_test::XmlMemoryLimit memory(0);
    EXPECT_EQ(makeXmlBuffer(xmlNode{}), nullptr);
}

} // namespace ZelUnified
