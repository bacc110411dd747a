#include "XmlTestSupport.h"
#include "featuresets/adapters/config/xml/XmlConfigParser.h"

#include <zel/ZelLog.h>

#include <LogRecorder.h>
#include <PrivateFiles.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using ZelUnified::ConfigKeySet;
using ZelUnified::ConfigMap;
using ZelUnified::XmlConfigParser;

namespace {

namespace fs = std::filesystem;

constexpr const char* declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

std::string toXml(const ConfigMap& values) {
    std::string xml = "left over";
    EXPECT_TRUE(XmlConfigParser::writeToMemory(xml, values));
    return xml;
}

ConfigMap readBack(const std::string& xml) {
    ConfigMap values;
    ConfigKeySet sensitive;
    EXPECT_TRUE(XmlConfigParser::readFromMemory(xml, values, sensitive)) << xml;
    return values;
}

} // namespace

TEST(XmlConfigParserWriting, WritesTheExpectedDocument) {
    EXPECT_EQ(toXml({{L"Beta", L"<&>\"'\u00E9"}, {L"alpha", L""}, {L"c_d", L" two\nlines\r"}}),
              std::string(declaration) + "<Lumora>\n <CachedConfig>\n"
                                         "  <alpha></alpha>\n"
                                         "  <Beta>&lt;&amp;&gt;&quot;'\xC3\xA9</Beta>\n"
                                         "  <c_d> two\nlines&#13;</c_d>\n"
                                         " </CachedConfig>\n</Lumora>\n");
    EXPECT_EQ(toXml({}), std::string(declaration) + "<Lumora>\n <CachedConfig/>\n</Lumora>\n");
}

TEST(XmlConfigParserWriting, ReadsBackWhatItWroteExceptTheCaseOfKeysAndOuterBlanks) {
    const ConfigMap values = {{L"Key", L"  v "}, {L"xml", L"<k a=\"1\">x<!-- n --></k>"}, {L"empty", L""}};
    EXPECT_THAT(readBack(toXml(values)),
                ElementsAre(Pair(L"empty", L""), Pair(L"key", L"v"), Pair(L"xml", L"<k a=\"1\">x<!-- n --></k>")));
}

TEST(XmlConfigParserWriting, ReplacesCharactersThatWouldMakeTheFileUnreadable) {
    const testing_host::LogRecorder log;
    ConfigMap values = {{L"good", L"\u00E9"}, {L"bad", std::wstring(L"secret\0\x01\xFFFE", 9)}};
    EXPECT_THAT(readBack(toXml(values)),
                ElementsAre(Pair(L"bad", L"secret\uFFFD\uFFFD\uFFFD"), Pair(L"good", L"\u00E9")));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning),
                ElementsAre("Characters that XML can't carry are replaced in the value of key: bad"));
    EXPECT_FALSE(log.mentions("secret"));
}

TEST(XmlConfigParserWriting, AKeyThatIsNoXmlNameMakesTheDocumentUnreadable) {
    ConfigMap values;
    ConfigKeySet sensitive;
    EXPECT_FALSE(XmlConfigParser::readFromMemory(toXml({{L"a b", L"1"}, {L"c", L"2"}}), values, sensitive));
}

TEST(XmlConfigParserWriting, LogsNothingIfItWritesToMemory) {
    const testing_host::LogRecorder log;
    toXml({{L"k", L"v"}});
    EXPECT_THAT(log.getRecords(), IsEmpty());
}

TEST(XmlConfigParserWriting, WritesAProtectedFileAndCreatesItsFolder) {
    const testing_host::TemporaryProfile profile;
    const testing_host::LogRecorder log;
    const fs::path path = profile.root() / "new.folder" / "deep" / "cachedX.xml";
    EXPECT_TRUE(XmlConfigParser::writeToFile(path.string(), ConfigMap{{L"k", L"planted secret"}}));
    const fs::path kept = path.parent_path() / "cachedX.dat";
    EXPECT_EQ(xml_test::readProtected(kept.string()), toXml({{L"k", L"planted secret"}}));
    EXPECT_EQ(testing_host::readFile(kept).find("planted"), std::string::npos);
    EXPECT_TRUE(testing_host::isPrivate(kept));
    EXPECT_FALSE(fs::exists(path));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Info), ElementsAre("data written to file: " + kept.string()));
}

TEST(XmlConfigParserWriting, ADotInTheNameOfTheFolderIsNoExtension) {
    const testing_host::TemporaryProfile profile;
    const testing_host::LogRecorder log;
    const fs::path path = profile.root() / "dotted.folder" / "bare";
    EXPECT_TRUE(XmlConfigParser::writeToFile(path.string(), ConfigMap{}));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Info), ElementsAre("data written to file: " + path.string() + ".dat"));
}

TEST(XmlConfigParserWriting, ReturnsSuccessEvenIfTheWriteFails) {
    const testing_host::TemporaryProfile profile;
    const testing_host::LogRecorder log;
    testing_host::writeFile(profile.root() / "file", "in the way");
    const fs::path path = profile.root() / "file" / "cachedX.dat";
    EXPECT_FALSE(XmlConfigParser::writeToFile(path.string(), ConfigMap{{L"k", L"v"}}));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Info), ElementsAre("data written to file: " + path.string()));
}

TEST(XmlConfigParserWriting, UsesTheDeviceCategoryForUrlProvisioning) {
    using namespace zel::storage::FileCategoryType;
    const testing_host::TemporaryProfile profile;
    const auto check = [&](const fs::path& path, FileCategory category) {
        EXPECT_TRUE(XmlConfigParser::writeToFile(path.string(), ConfigMap{{L"k", L"v"}}));
        EXPECT_EQ(xml_test::readProtected(path.string(), category), toXml({{L"k", L"v"}})) << path;
        ConfigMap values;
        ConfigKeySet sensitive;
        EXPECT_TRUE(XmlConfigParser::readFromEncryptedFile(path.string(), values, sensitive));
    };
    check(profile.root() / "cachedUrlProvisioningConfigStore.dat", DeviceData);
    check(profile.root() / "UrlProvisioningConfigStore" / "cachedX.dat", DeviceData);
    check(profile.root() / "cachedurlprovisioningconfigstore.dat", UserData);
}

TEST(XmlConfigParserWriting, WithoutMemoryWritesAndLogsNothing) {
    const testing_host::TemporaryProfile profile;
    const testing_host::LogRecorder log;
    const fs::path path = profile.root() / "cachedX.dat";
    std::string xml = "left over";
    const ConfigMap values = {{L"k", L"v"}};
    for (const std::size_t limit : {0U, 500U}) { // enough for nothing, and for a buffer but no writer
        const xml_test::XmlMemoryLimit memory(limit);
        EXPECT_FALSE(XmlConfigParser::writeToMemory(xml, values)) << limit;
        EXPECT_FALSE(XmlConfigParser::writeToFile(path.string(), values)) << limit;
    }
    EXPECT_EQ(xml, "left over");
    EXPECT_FALSE(fs::exists(path));
    EXPECT_THAT(log.getRecords(), IsEmpty());
}

TEST(XmlConfigParserWriting, SavesAnXmlTextUnprotectedWithMode0600) {
    const testing_host::TemporaryProfile profile;
    const fs::path path = profile.root() / "folder" / "plain.xml";
    EXPECT_TRUE(XmlConfigParser::writeToFile(path.string(), "<a><k>v</k></a>"));
    EXPECT_EQ(testing_host::readFile(path), "<?xml version=\"1.0\"?>\n<a><k>v</k></a>\n");
    EXPECT_TRUE(testing_host::isPrivate(path));
}

TEST(XmlConfigParserWriting, SavesUnderNamesThatLookLikeUris) {
    const testing_host::TemporaryProfile profile;
    for (const std::string name : {"z%41.xml", "z b%41.xml", "z\xC3\xA9%25.xml", "100%.xml", "z b.xml"}) {
        EXPECT_TRUE(XmlConfigParser::writeToFile((profile.root() / name).string(), "<a/>"));
        EXPECT_TRUE(fs::exists(profile.root() / name)) << name;
        EXPECT_NE(testing_host::readFile(profile.root() / name), "") << name;
    }
    EXPECT_FALSE(fs::exists(profile.root() / "zA.xml"));
}

TEST(XmlConfigParserWriting, SavesNothingForMalformedText) {
    const testing_host::TemporaryProfile profile;
    const fs::path path = profile.root() / "folder" / "plain.xml";
    EXPECT_FALSE(XmlConfigParser::writeToFile(path.string(), "<a>"));
    EXPECT_TRUE(fs::is_directory(path.parent_path()));
    EXPECT_FALSE(fs::exists(path));
    testing_host::writeFile(path, "old");
    EXPECT_FALSE(XmlConfigParser::writeToFile(path.string(), std::string()));
    EXPECT_EQ(testing_host::readFile(path), "old");
}

TEST(XmlConfigParserWriting, FailsIfTheFileCannotBeCreated) {
    const testing_host::TemporaryProfile profile;
    testing_host::writeFile(profile.root() / "file", "in the way");
    EXPECT_FALSE(XmlConfigParser::writeToFile((profile.root() / "file" / "x.xml").string(), "<a/>"));
}
