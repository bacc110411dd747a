#include "featuresets/adapters/config/xml/XmlConfigParser.h"

#include "XmlTestSupport.h"

#include <kyr/StringUtils.h>
#include <zel/ZelLog.h>

#include <LogRecorder.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using ZelUnified::ConfigKeySet;
using ZelUnified::ConfigMap;
using ZelUnified::XmlConfigParser;

namespace {

constexpr const char* loggerName = "ConfigService-XmlConfigParser";
constexpr const char* syntaxLine = "\n************\nError Invalid XML syntax detected - Unable to read xml "
                                   "configuration.\n************";

/// Calls the private operation of this name: every text that parses has a root.
bool parseDocument(const ZelUnified::XmlDocument& document, ConfigMap& values, ConfigKeySet& sensitiveKeys);

template <auto operation>
struct PrivateOperation {
    friend bool parseDocument(const ZelUnified::XmlDocument& document, ConfigMap& values, ConfigKeySet& sensitiveKeys) {
        return operation(document, values, sensitiveKeys);
    }
};

// Explicit instantiation may name private members.
template struct PrivateOperation<&XmlConfigParser::parseXmlConfig>;

struct Table {
    bool read = false;
    ConfigMap values;
    ConfigKeySet sensitive;
};

Table parse(const std::string& xml) {
    Table table;
    table.values[L"left over"] = L"x";
    table.read = XmlConfigParser::readFromMemory(xml, table.values, table.sensitive);
    return table;
}

/// Returns the value of the only key "k" in `element`.
std::wstring valueOf(const std::string& element) {
    const Table table = parse("<a><g>" + element + "</g></a>");
    EXPECT_EQ(table.values.size(), 1U) << element;
    return table.values.contains(L"k") ? table.values.at(L"k") : L"(none)";
}

} // namespace

TEST(XmlConfigParser, ReadsRootGroupsAndKeys) {
    EXPECT_THAT(parse("<a><b><c>1</c></b><b><c>2</c><d>3</d></b></a>").values,
                ElementsAre(Pair(L"c", L"1"), Pair(L"d", L"3")));
    EXPECT_THAT(parse("<a><g><Key>  x  </Key></g></a>").values, ElementsAre(Pair(L"key", L"x")));
    EXPECT_THAT(parse("<a><g>\xC3\x89<\xC3\x89>x</\xC3\x89></g></a>").values, ElementsAre(Pair(L"\u00E9", L"x")));
}

TEST(XmlConfigParser, LogsAWarningForADocumentWithoutARoot) {
    const testing_host::LogRecorder log;
    const ZelUnified::XmlDocument rootless(xmlNewDoc(nullptr), &xmlFreeDoc);
    ConfigMap values;
    ConfigKeySet sensitive;
    EXPECT_FALSE(parseDocument(rootless, values, sensitive));
    EXPECT_THAT(log.getTexts(loggerName), ElementsAre("XML document root element not available."));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning), ElementsAre("XML document root element not available."));
}

TEST(XmlConfigParser, IgnoresAllNodesButElementsOnTheUpperLevelsWithoutALine) {
    const testing_host::LogRecorder log;
    const Table table = parse("<?xml version='1.0'?><!-- c --><a x='1'>text<!-- c --><?p i?><g k='2'>text"
                              "<![CDATA[data]]><!-- c --></g><h>text</h></a>");
    EXPECT_TRUE(table.read);
    EXPECT_THAT(table.values, IsEmpty());
    const Table bare = parse("<a/>");
    EXPECT_TRUE(bare.read);
    EXPECT_THAT(bare.values, IsEmpty());
    EXPECT_THAT(log.getRecords(), IsEmpty());
}

TEST(XmlConfigParser, ConcatenatesTextAndCDataAndTrimsTheResult) {
    EXPECT_EQ(valueOf("<k><![CDATA[x]]>y</k>"), L"xy");
    EXPECT_EQ(valueOf("<k> <![CDATA[ x ]]> y </k>"), L"x  y");
    EXPECT_EQ(valueOf("<k><![CDATA[]]>y</k>"), L"y");
    EXPECT_EQ(valueOf("<k> \t\r\n </k>"), L"");
    EXPECT_EQ(valueOf("<k/>"), L"");
    EXPECT_EQ(valueOf("<k></k>"), L"");
    EXPECT_EQ(valueOf("<k>&lt;&amp;&#x41;</k>"), L"<&A");
}

TEST(XmlConfigParser, KeepsAnElementWithMoreThanTextAsXml) {
    EXPECT_EQ(valueOf("<k>x<!-- note --></k>"), L"<k>x<!-- note --></k>");
    EXPECT_EQ(valueOf("<K a='1'> <Sub>y</Sub> <e></e></K>"), L"<K a=\"1\"> <Sub>y</Sub> <e/></K>");
    EXPECT_EQ(valueOf("<k><?p i?></k>"), L"<k><?p i?></k>");
    EXPECT_EQ(valueOf("<k><s><![CDATA[<]]></s></k>"), L"<k><s><![CDATA[<]]></s></k>");
}

TEST(XmlConfigParser, KeepsAnEntityReferenceAsWritten) {
    const Table table = parse("<!DOCTYPE a [<!ENTITY e 'secret'>]><a><g><k>x&e;</k><l>&e;</l></g></a>");
    EXPECT_THAT(table.values, ElementsAre(Pair(L"k", L"<k>x&e;</k>"), Pair(L"l", L"<l>&e;</l>")));
}

TEST(XmlConfigParser, UsesValueAndMarkOfTheFirstOccurrenceOfAKey) {
    const Table table = parse("<a><g><Key>1</Key></g><h><kEY sensitive='true'>2</kEY></h></a>");
    EXPECT_THAT(table.values, ElementsAre(Pair(L"key", L"1")));
    EXPECT_THAT(table.sensitive, IsEmpty());
}

TEST(XmlConfigParser, RemovesDeclaredPrefixesFromKeys) {
    EXPECT_THAT(parse("<a xmlns:p='urn:x'><g><p:K>1</p:K></g></a>").values, ElementsAre(Pair(L"k", L"1")));
}

TEST(XmlConfigParser, UsesTheFirstSensitiveAttributeIgnoringCase) {
    EXPECT_THAT(parse("<a><g><K SENSITIVE='true'>x</K></g></a>").sensitive, ElementsAre(L"k"));
    EXPECT_THAT(parse("<a><g><k sensitive=' Yes '><sub/></k></g></a>").sensitive, ElementsAre(L"k"));
    EXPECT_THAT(parse("<a><g><k sensitive='false' SENSITIVE='true'>x</k></g></a>").sensitive, IsEmpty());
    EXPECT_THAT(parse("<a><g><k sensitive=''>x</k></g></a>").sensitive, IsEmpty());
    EXPECT_THAT(parse("<a><g><k secret='true'>x</k></g></a>").sensitive, IsEmpty());
}

TEST(XmlConfigParser, MarksANestedPasswordOnEveryPath) {
    const testing_host::TemporaryProfile profile;
    const std::string plain = (profile.root() / "plain.xml").string();
    const std::string encrypted = (profile.root() / "cachedX.dat").string();
    for (const std::string key : {"connectionpassword", "BDIConnectionPassword"}) {
        for (const std::string mark : {"true", "1", "yes", "on"}) {
            const std::string xml = "<a><g><" + key + " sensitive='" + mark + "'><v>hunter2</v></" + key + "></g></a>";
            SCOPED_TRACE(xml);
            const std::wstring value =
                KyrCoreUtils::toWideString("<" + key + " sensitive=\"" + mark + "\"><v>hunter2</v></" + key + ">");
            const std::wstring name = KyrCoreUtils::toLowercase(KyrCoreUtils::toWideString(key));
            const Table table = parse(xml);
            EXPECT_THAT(table.values, ElementsAre(Pair(name, value)));
            EXPECT_THAT(table.sensitive, ElementsAre(name));
            testing_host::writeFile(plain, xml);
            Table fromFile;
            EXPECT_TRUE(XmlConfigParser::readFromFile(plain, fromFile.values, fromFile.sensitive));
            EXPECT_EQ(fromFile.values, table.values);
            EXPECT_THAT(fromFile.sensitive, ElementsAre(name));
            ASSERT_TRUE(xml_test::writeProtected(encrypted, xml));
            Table fromProtected;
            EXPECT_TRUE(
                XmlConfigParser::readFromEncryptedFile(encrypted, fromProtected.values, fromProtected.sensitive));
            EXPECT_EQ(fromProtected.values, table.values);
            EXPECT_THAT(fromProtected.sensitive, ElementsAre(name));
        }
    }
}

TEST(XmlConfigParser, AlwaysClearsTheValuesAndNeverTheMarks) {
    ConfigKeySet sensitive{L"before"};
    ConfigMap values{{L"left over", L"x"}};
    EXPECT_FALSE(XmlConfigParser::readFromMemory("", values, sensitive));
    EXPECT_THAT(values, IsEmpty());
    values[L"left over"] = L"x";
    EXPECT_FALSE(XmlConfigParser::readFromFile("/no/such/file.xml", values, sensitive));
    EXPECT_THAT(values, IsEmpty());
    values[L"left over"] = L"x";
    EXPECT_FALSE(XmlConfigParser::readFromEncryptedFile("/no/such/file.dat", values, sensitive));
    EXPECT_THAT(values, IsEmpty());
    EXPECT_THAT(sensitive, ElementsAre(L"before"));
}

TEST(XmlConfigParser, FipsModeForcesTheKey) {
    const std::string xml = "<a><g><telephony_p2p_ENABLED>true</telephony_p2p_ENABLED></g></a>";
    {
        const xml_test::FipsMode fips(true);
        EXPECT_THAT(parse(xml).values, ElementsAre(Pair(L"telephony_p2p_enabled", L"false")));
    }
    const xml_test::FipsMode fips(false);
    EXPECT_THAT(parse(xml).values, ElementsAre(Pair(L"telephony_p2p_enabled", L"true")));
}

TEST(XmlConfigParser, ScrubsAPasswordAndKeepsEqualTextsElsewhere) {
    // "abc" is short enough for the dictionary to share it with the name and the equal value.
    const Table table = parse("<a><g><ConnectionPassword>abc</ConnectionPassword><abc>1</abc><k>abc</k>"
                              "<BDIConnectionPassword><v p='abc'>abc</v></BDIConnectionPassword><l>abc</l></g></a>");
    EXPECT_THAT(table.values, ElementsAre(Pair(L"abc", L"1"),
                                          Pair(L"bdiconnectionpassword",
                                               L"<BDIConnectionPassword><v p=\"abc\">abc</v></BDIConnectionPassword>"),
                                          Pair(L"connectionpassword", L"abc"), Pair(L"k", L"abc"), Pair(L"l", L"abc")));
}

TEST(XmlConfigParser, LogsNothingForAnEmptyTextAndErrorsForMalformedText) {
    const testing_host::LogRecorder log;
    EXPECT_FALSE(parse("").read);
    EXPECT_THAT(log.getTexts(loggerName), IsEmpty());
    testing::internal::CaptureStderr();
    const Table table = parse("<a><g><connectionpassword>hunter2</oops></a>");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_FALSE(table.read);
    EXPECT_THAT(table.values, IsEmpty());
    EXPECT_THAT(log.getTexts(loggerName), ElementsAre(syntaxLine));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), ElementsAre(syntaxLine));
}

TEST(XmlConfigParser, RefusesHostileTextsWithALine) {
    auto hostile = xml_test::hostileTexts();
    hostile.push_back("<a><g><k>" + std::string(100'000'000, 'x') + "</k></g></a>");
    for (const std::string& xml : hostile) {
        const testing_host::LogRecorder log;
        const Table table = parse(xml);
        EXPECT_FALSE(table.read) << xml.substr(0, 60);
        EXPECT_TRUE(table.values.empty());
        EXPECT_THAT(log.getTexts(loggerName), ElementsAre(syntaxLine));
    }
}

TEST(XmlConfigParser, RefusesHostileFilesWithALine) {
    const testing_host::TemporaryProfile profile;
    const std::string plain = (profile.root() / "plain.xml").string();
    const std::string encrypted = (profile.root() / "cachedX.dat").string();
    for (const std::string& xml : xml_test::hostileTexts()) {
        SCOPED_TRACE(xml.substr(0, 60));
        testing_host::writeFile(plain, xml);
        ASSERT_TRUE(xml_test::writeProtected(encrypted, xml));
        const testing_host::LogRecorder log;
        ConfigMap values{{L"left over", L"x"}};
        ConfigKeySet sensitive;
        EXPECT_FALSE(XmlConfigParser::readFromFile(plain, values, sensitive));
        EXPECT_TRUE(values.empty());
        values[L"left over"] = L"x";
        EXPECT_FALSE(XmlConfigParser::readFromEncryptedFile(encrypted, values, sensitive));
        EXPECT_TRUE(values.empty());
        EXPECT_THAT(log.getTexts(ZelLogLevel::Warning),
                    ElementsAre("XML in file did not exist or is an invalid XML document: " + plain,
                                "XML in file did not exist or is an invalid XML document: cachedX.dat or cachedX.dat"));
    }
}

TEST(XmlConfigParser, RefusesAFileThatWouldInflateBeyondEveryLimit) {
    const testing_host::TemporaryProfile profile;
    const std::string path = (profile.root() / "plain.xml").string();
    xml_test::writeInflatingFile(path);
    ASSERT_LT(std::filesystem::file_size(path), 200'000U) << "the library was built without zlib";
    const testing_host::LogRecorder log;
    ConfigMap values{{L"left over", L"x"}};
    ConfigKeySet sensitive;
    EXPECT_FALSE(XmlConfigParser::readFromFile(path, values, sensitive));
    EXPECT_TRUE(values.empty());
    ASSERT_THAT(log.getTexts(loggerName),
                ElementsAre("XML in file did not exist or is an invalid XML document: " + path));
    EXPECT_EQ(log.getRecords().front().level, ZelLogLevel::Warning);
}

TEST(XmlConfigParser, NeverExpandsNorLoadsEntities) {
    const testing_host::TemporaryProfile profile;
    const std::string secret = (profile.root() / "secret").string();
    testing_host::writeFile(secret, "content of another file");
    const xml_test::LoadCounter loads;
    const Table external = parse("<!DOCTYPE a SYSTEM 'http://127.0.0.1:9/x.dtd' [<!ENTITY e SYSTEM '" + secret +
                                 "'>]><a><g><k sensitive='true'>&e;</k></g></a>");
    EXPECT_THAT(external.values, ElementsAre(Pair(L"k", L"<k sensitive=\"true\">&e;</k>")));
    EXPECT_EQ(loads.count(), 0);
    const Table laughs = parse(xml_test::billionLaughs("<a><g><k>&a9;</k><l sensitive='&a9;'>x</l></g></a>"));
    EXPECT_THAT(laughs.sensitive, IsEmpty());
    for (const auto& entry : laughs.values) {
        EXPECT_LT(entry.second.size(), 100U);
    }
}

TEST(XmlConfigParser, ReadsAPlainFile) {
    const testing_host::TemporaryProfile profile;
    const testing_host::LogRecorder log;
    const std::string path = (profile.root() / "plain.xml").string();
    testing_host::writeFile(path, "<a><g><k sensitive='1'>v</k></g></a>");
    ConfigMap values;
    ConfigKeySet sensitive;
    EXPECT_TRUE(XmlConfigParser::readFromFile(path, values, sensitive));
    EXPECT_THAT(values, ElementsAre(Pair(L"k", L"v")));
    EXPECT_THAT(sensitive, ElementsAre(L"k"));
    EXPECT_THAT(log.getTexts(loggerName), IsEmpty());
}

TEST(XmlConfigParser, LogsAMalformedPlainFileButNotAMissingOne) {
    const testing_host::TemporaryProfile profile;
    const testing_host::LogRecorder log;
    const std::string path = (profile.root() / "plain.xml").string();
    ConfigMap values{{L"left over", L"x"}};
    ConfigKeySet sensitive;
    EXPECT_FALSE(XmlConfigParser::readFromFile(path, values, sensitive));
    EXPECT_THAT(values, IsEmpty());
    EXPECT_THAT(log.getTexts(loggerName), IsEmpty());
    testing_host::writeFile(path, "");
    values[L"left over"] = L"x";
    EXPECT_FALSE(XmlConfigParser::readFromFile(path, values, sensitive));
    EXPECT_THAT(values, IsEmpty());
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning),
                ElementsAre("XML in file did not exist or is an invalid XML document: " + path));
}

TEST(XmlConfigParser, ReadsAProtectedFileUnderEitherName) {
    const testing_host::TemporaryProfile profile;
    const testing_host::LogRecorder log;
    const std::string path = (profile.root() / "cachedX.dat").string();
    ASSERT_TRUE(xml_test::writeProtected(path, "<a><g><k>v</k><l><m>abc</m></l></g></a>"));
    for (const std::string name : {"cachedX.dat", "cachedX.xml"}) {
        ConfigMap values;
        ConfigKeySet sensitive;
        EXPECT_TRUE(XmlConfigParser::readFromEncryptedFile((profile.root() / name).string(), values, sensitive));
        EXPECT_THAT(values, ElementsAre(Pair(L"k", L"v"), Pair(L"l", L"<l><m>abc</m></l>")));
    }
    EXPECT_THAT(log.getTexts(loggerName), IsEmpty());
}

TEST(XmlConfigParser, LogsAWarningForAProtectedFileThatCannotBeRead) {
    const testing_host::TemporaryProfile profile;
    const testing_host::LogRecorder log;
    ConfigMap values;
    ConfigKeySet sensitive;
    for (const std::string name : {"a.b.xml", "cachedX.dat", "bare"}) {
        EXPECT_FALSE(XmlConfigParser::readFromEncryptedFile((profile.root() / name).string(), values, sensitive));
    }
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning),
                ElementsAre("Failed to read XML document: a.b.xml or a.b.dat",
                            "Failed to read XML document: cachedX.dat or cachedX.dat",
                            "Failed to read XML document: bare or bare.dat"));
}

TEST(XmlConfigParser, LogsAProtectedFileWithMalformedText) {
    const testing_host::TemporaryProfile profile;
    const testing_host::LogRecorder log;
    const std::string path = (profile.root() / "settings.xml").string();
    ASSERT_TRUE(xml_test::writeProtected(path, "<a>"));
    ConfigMap values{{L"left over", L"x"}};
    ConfigKeySet sensitive;
    EXPECT_FALSE(XmlConfigParser::readFromEncryptedFile(path, values, sensitive));
    EXPECT_THAT(values, IsEmpty());
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning),
                ElementsAre("XML in file did not exist or is an invalid XML document: settings.xml or settings.dat"));
}
