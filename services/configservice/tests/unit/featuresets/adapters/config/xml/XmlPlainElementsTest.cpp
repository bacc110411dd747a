#include "featuresets/adapters/config/xml/XmlPlainElements.h"

#include "featuresets/adapters/config/xml/XmlConfigParser.h"
#include "featuresets/adapters/config/xml/XmlReader.h"
#include "secure/SecureString.h"

#include <zel/EncryptFileUtils.h>
#include <zel/FipsUtils.h>

#include <TemporaryProfile.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using ZelUnified::ConfigKeySet;
using ZelUnified::ConfigMap;
using ZelUnified::XmlConfigParser;
using ZelUnified::XmlDocument;
using ZelUnified::XmlReader;

namespace {

using Elements = std::vector<std::pair<std::string, std::string>>;

struct Parsed {
    Elements handedOut;
    XmlDocument document;
};

Parsed parse(const std::string& xml) {
    Parsed parsed;
    parsed.document = XmlReader::parseDoc(
        xml, [&](std::string_view name, std::string_view text) { parsed.handedOut.emplace_back(name, text); });
    return parsed;
}

/// Returns the names of the elements in the tree's first group.
std::vector<std::string> namesInTree(const XmlDocument& document) {
    std::vector<std::string> names;
    const xmlNode* group = xmlFirstElementChild(xmlDocGetRootElement(document.get()));
    for (const xmlNode* child = group->children; child != nullptr; child = child->next) {
        if (child->type == XML_ELEMENT_NODE) {
            names.push_back(XmlReader::getName(*child));
        }
    }
    return names;
}

/// The tables that the two ways of reading return for one document.
struct Tables {
    bool protectedRead = false;
    bool memoryRead = false;
    ConfigMap fromProtected;
    ConfigMap fromMemory;
    ConfigKeySet protectedMarks;
    ConfigKeySet memoryMarks;
};

Tables readBothWays(const std::string& xml) {
    const testing_host::TemporaryProfile profile;
    const std::string path = (profile.config() / "document.dat").string();
    zel::storage::EncryptFileUtils::writeDataToFile(path, zel::SecureString(xml),
                                                    zel::storage::FileCategoryType::UserData);
    Tables tables;
    tables.protectedRead = XmlConfigParser::readFromEncryptedFile(path, tables.fromProtected, tables.protectedMarks);
    tables.memoryRead = XmlConfigParser::readFromMemory(xml, tables.fromMemory, tables.memoryMarks);
    return tables;
}

} // namespace

TEST(XmlPlainElements, ArePassedToTheReceiverInsteadOfTheTree) {
    const auto parsed = parse("<r>\n <g>\n  <K1> x &amp; &#x79; </K1>\n  <k2/>\n </g>\n <g><k3></k3></g>\n</r>");
    EXPECT_THAT(parsed.handedOut, ElementsAre(Pair("K1", " x & y "), Pair("k2", ""), Pair("k3", "")));
    ASSERT_NE(parsed.document, nullptr);
    EXPECT_THAT(namesInTree(parsed.document), IsEmpty());
}

TEST(XmlPlainElements, EndAtTheFirstElementThatContainsMoreThanText) {
    for (const std::string more : {"<b>x</b>", "<!-- note -->", "<?target data?>", "<![CDATA[x]]>"}) {
        const auto parsed = parse("<r><g><k1>1</k1><k2>text" + more + "tail</k2><k3>3</k3></g></r>");
        EXPECT_THAT(parsed.handedOut, ElementsAre(Pair("k1", "1"))) << more;
        ASSERT_NE(parsed.document, nullptr) << more;
        EXPECT_THAT(namesInTree(parsed.document), ElementsAre("k2", "k3")) << more;
    }
}

TEST(XmlPlainElements, HaveNeitherAttributesNorNamespaces) {
    for (const std::string element : {"<k a='1'>x</k>", "<k xmlns='u'>x</k>", "<p:k xmlns:p='u'>x</p:k>"}) {
        EXPECT_THAT(parse("<r><g>" + element + "<l>y</l></g></r>").handedOut, IsEmpty()) << element;
    }
    EXPECT_THAT(parse("<r xmlns='u'><g><k>x</k></g></r>").handedOut, IsEmpty());
}

TEST(XmlPlainElements, AreNotExtractedFromADocumentWithDeclarations) {
    const auto parsed = parse("<!DOCTYPE r [<!ENTITY e 'text'>]><r><g><k>x</k><l>&e;</l></g></r>");
    EXPECT_THAT(parsed.handedOut, IsEmpty());
    EXPECT_THAT(namesInTree(parsed.document), ElementsAre("k", "l"));
}

TEST(XmlPlainElements, OverrideALaterElementOfTheSameKeyAndItsMark) {
    const auto tables = readBothWays("<r><g><k>plain</k><l sensitive='true'>marked</l>"
                                     "<K sensitive='true'>late</K></g></r>");
    for (const auto& values : {tables.fromProtected, tables.fromMemory}) {
        EXPECT_THAT(values, ElementsAre(Pair(L"k", L"plain"), Pair(L"l", L"marked")));
    }
    for (const auto& marks : {tables.protectedMarks, tables.memoryMarks}) {
        EXPECT_THAT(marks, ElementsAre(L"l"));
    }
}

TEST(XmlPlainElements, LongTextsStayInTheTree) {
    const std::string longText(100'000, 'x');
    const auto parsed = parse("<r><g><k>1</k><l>" + longText + "</l></g></r>");
    EXPECT_THAT(parsed.handedOut, ElementsAre(Pair("k", "1")));
    const xmlNode* group = xmlFirstElementChild(xmlDocGetRootElement(parsed.document.get()));
    EXPECT_EQ(reinterpret_cast<const char*>(group->children->children->content), longText);
}

TEST(XmlPlainElements, OfAMalformedDocumentAreDiscarded) {
    const auto parsed = parse("<r><g><k>1</k></g>");
    EXPECT_EQ(parsed.document, nullptr);
    const Tables tables = readBothWays("<r><g><k>1</k></g>");
    EXPECT_FALSE(tables.protectedRead);
    EXPECT_THAT(tables.fromProtected, IsEmpty());
}

TEST(XmlPlainElements, PassAnExceptionOfTheReceiverToTheCaller) {
    int calls = 0;
    const auto receiver = [&](std::string_view, std::string_view) {
        ++calls;
        throw std::bad_alloc();
    };
    EXPECT_THROW(XmlReader::parseDoc("<r><g><k>1</k><l>2</l></g></r>", receiver), std::bad_alloc);
    EXPECT_EQ(calls, 1);
}

TEST(XmlPlainElements, DoNotChangeTheValuesOfADocument) {
    const std::string longestText(std::size_t{64} * 1024, 'x');
    const std::vector<std::string> documents{
        "<a><b><c>1</c></b><b><c>2</c></b></a>",
        "<a>text<k>no group's key</k><g>text<Key>  x  </Key><!-- note --><key>y</key></g></a>",
        "<a><g><k>1</k><n>x<b a='&#xE9;'>y</b></n><K>2</K><n>3</n><l>4</l></g><g><m>5</m></g></a>",
        "<a><g><n><b/></n><k>1</k><N>plain</N></g></a>",
        "<a><g><k>1</k><K sensitive='true'>2</K><s SENSITIVE='yes'>3</s></g></a>",
        "<a><g><k>x<![CDATA[y]]>z</k><l><![CDATA[]]><m>1</m></l></g></a>",
        "<a><g><k><![CDATA[]]>y</k><l><![CDATA[]]></l><m/><o>\xC3\xA9 </o></g></a>",
        "<!DOCTYPE a [<!ATTLIST k sensitive CDATA 'true'><!ENTITY e 'x'>]><a><g><k>1</k><l>&e;</l></g></a>",
        "<p:a xmlns:p='u'><p:g><p:k>1</p:k><k>2</k></p:g></p:a>",
        "<a><g><connectionpassword>abc</connectionpassword><abc>abc</abc></g></a>",
        "<a><g><k>1</k><l>" + longestText + "<b>x</b></l><m>2</m></g></a>",
        "<a><g><k>1</k><l>" + longestText + "<![CDATA[x]]></l><m>2</m></g></a>",
        "<?xml version='1.0' encoding='ISO-8859-1'?><a><g><k>\xE9</k><l>x\xE9<b>\xE9</b></l></g></a>",
        "<a/>",
        "<a><g/></a>",
    };
    for (const auto& document : documents) {
        const Tables tables = readBothWays(document);
        EXPECT_TRUE(tables.protectedRead) << document;
        EXPECT_TRUE(tables.memoryRead) << document;
        EXPECT_EQ(tables.fromProtected, tables.fromMemory) << document;
        EXPECT_EQ(tables.protectedMarks, tables.memoryMarks) << document;
    }
}

TEST(XmlPlainElements, DoNotChangeTheValuesOfRandomDocuments) {
    std::mt19937 chance(5); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same documents in each run
    const std::vector<std::string> names{"k", "K", "l", "Telephony_P2P_Enabled", "\xC3\x84", "\xC3\xA4", "password"};
    const std::vector<std::string> marks{"", "", "", "", "", " sensitive='true'", " SENSITIVE='no'", " xmlns='u'"};
    const std::vector<std::string> texts{"",
                                         "1",
                                         " two ",
                                         "\xC3\xA9t\xC3\xA9",
                                         "&lt;&#9;",
                                         std::string(100, 'x'),
                                         "3",
                                         "true",
                                         "<![CDATA[c]]>",
                                         "a<b/>",
                                         "<!--n-->"};
    const auto oneOf = [&chance](const auto& all) { return all[chance() % all.size()]; };
    for (int round = 0; round < 200; ++round) {
        std::string document = "<a><g>";
        for (auto i = chance() % 12; i > 0; --i) {
            const auto name = oneOf(names);
            document += "<" + name + oneOf(marks) + ">" + oneOf(texts) + "</" + name + ">";
            document += chance() % 5 == 0 ? "</g><g>" : "";
        }
        document += "</g></a>";
        zel::common::FipsUtils::overrideFipsMode(chance() % 2 == 0);
        const Tables tables = readBothWays(document);
        zel::common::FipsUtils::overrideFipsMode(std::nullopt);
        ASSERT_TRUE(tables.memoryRead && tables.protectedRead) << document;
        ASSERT_EQ(tables.fromProtected, tables.fromMemory) << document;
        ASSERT_EQ(tables.protectedMarks, tables.memoryMarks) << document;
    }
}
