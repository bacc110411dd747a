#include "XmlFreedBlocks.h"
#include "featuresets/adapters/config/xml/XmlConfigParser.h"
#include "featuresets/adapters/config/xml/XmlReader.h"
#include "featuresets/adapters/config/xml/XmlWriter.h"

#include <kyr/StringUtils.h>

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <libxml/xmlmemory.h>

#include <string>

using memory_test::XmlFreedBlocks;
using ZelUnified::ConfigKeySet;
using ZelUnified::ConfigMap;
using ZelUnified::XmlConfigParser;
using ZelUnified::XmlDocument;
using ZelUnified::XmlReader;
using ZelUnified::XmlWriter;

namespace {

const std::string secret = "planted secret";

/// Calls the private operation of this name: parsing a text would add a copy of all of it, which is not part of the
/// tree.
bool parseDocument(const XmlDocument& document, ConfigMap& values, ConfigKeySet& sensitiveKeys);

template <auto operation>
struct PrivateOperation {
    friend bool parseDocument(const XmlDocument& document, ConfigMap& values, ConfigKeySet& sensitiveKeys) {
        return operation(document, values, sensitiveKeys);
    }
};

// Explicit instantiation may name private members.
template struct PrivateOperation<&XmlConfigParser::parseXmlConfig>;

/// Returns the secret repeated to at least this number of bytes.
std::string secretOf(std::size_t bytes) {
    std::string text = secret;
    while (text.size() < bytes) {
        text += ", " + secret;
    }
    return text;
}

std::wstring wideSecretOf(std::size_t bytes) {
    return KyrCoreUtils::toWideString(secretOf(bytes));
}

/// Returns the number of blocks with the secret that are freed together with a tree and the values read from it. The
/// only key has the secret as its value.
std::size_t countBehindTree(const std::string& element) {
    XmlDocument document = XmlReader::readMemory("<a><g>" + element + "</g></a>", "test");
    const XmlFreedBlocks freed(secret);
    ConfigMap values;
    ConfigKeySet sensitive;
    EXPECT_TRUE(parseDocument(document, values, sensitive));
    EXPECT_EQ(values.size(), 1U);
    EXPECT_NE(values.begin()->second.find(L"planted secret"), std::wstring::npos);
    document.reset();
    EXPECT_GT(freed.countAll(), 0U);
    return freed.count();
}

} // namespace

TEST(XmlFreedBlocks, ContainsFreedAndReallocatedBlocks) {
    const XmlFreedBlocks freed(secret);
    void* block = xmlMemStrdup(("a " + secret).c_str());
    EXPECT_EQ(freed.count(), 0U);
    block = xmlRealloc(block, 1000);
    EXPECT_EQ(freed.count(), 1U);
    xmlFree(block);
    EXPECT_EQ(freed.count(), 2U);
}

TEST(XmlMemory, FreedBlocksContainNoWrittenText) {
    for (const std::size_t kilobytes : {1U, 5U, 50U}) {
        const XmlFreedBlocks freed(secret);
        {
            XmlWriter writer;
            writer.startElement("root");
            for (std::size_t count = 0; count < kilobytes * 5; ++count) {
                writer.writeEmptyElement(
                    "userConfig", {{"plain", wideSecretOf(100)}, {"value", wideSecretOf(100) + L"<&>\"\n\r\t\u00E9"}});
            }
            writer.writeElement("key", wideSecretOf(kilobytes * 400));
            for (std::size_t count = 0; count < kilobytes * 5; ++count) {
                writer.startElement("userConfig");
                writer.writeAttribute("name", L"key & " + std::to_wstring(count));
                writer.writeAttribute("plain", wideSecretOf(100));
                writer.writeAttribute("value", wideSecretOf(100) + L"<&>\"\n\r\t\u00E9");
                writer.endElement();
                writer.writeElement("plain", wideSecretOf(100));
            }
            const std::string document = writer.finish();
            EXPECT_GE(document.size(), kilobytes * 1024);
            EXPECT_NE(document.find(secret), std::string::npos);
        }
        EXPECT_GT(freed.countAll(), 0U);
        EXPECT_EQ(freed.count(), 0U) << kilobytes;
    }
}

TEST(XmlMemory, FreedBlocksContainNoSensitiveText) {
    for (const std::size_t bytes : {10U, 1'000U, 50'000U}) {
        const std::string text = secretOf(bytes);
        EXPECT_GT(countBehindTree("<other>" + text + "</other>"), 0U) << bytes;
        EXPECT_EQ(countBehindTree("<connectionpassword>" + text + "</connectionpassword>"), 0U) << bytes;
        EXPECT_EQ(countBehindTree("<ConnectionPassword>x<![CDATA[" + text + "]]></ConnectionPassword>"), 0U) << bytes;
    }
}

TEST(XmlMemory, FreedBlocksContainNoSensitiveElementWithMoreThanText) {
    for (const std::size_t bytes : {10U, 1'000U, 5'000U, 50'000U}) {
        const std::string nested = "<b c='" + secretOf(bytes) + "'>" + secretOf(bytes) + "</b>";
        EXPECT_GT(countBehindTree("<other>" + nested + "</other>"), 0U) << bytes;
        EXPECT_EQ(countBehindTree("<connectionpassword>" + nested + "</connectionpassword>"), 0U) << bytes;
    }
}
