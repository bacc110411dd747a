#include "featuresets/adapters/config/stores/LocalFileDocument.h"

#include "LocalFileTestSupport.h"
#include "featuresets/adapters/config/xml/XmlTestSupport.h"
#include "secure/SecureBuffer.h"
#include "secure/SecureString.h"
#include "table/ConfigTable.h"

#include <zel/ZelLog.h>

#include <LogRecorder.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <string_view>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using ZelUnified::ConfigMap;
using ZelUnified::ConfigTable;
using ZelUnified::LocalFileDocument;
using ZelUnified::XmlReader;

namespace {

ConfigMap read(const std::string& xml, const std::string& store = "LocalFileConfigStore") {
    ConfigMap values;
    const auto document = XmlReader::parseDoc(xml);
    if (document) {
        LocalFileDocument(store, values).read(document);
    }
    return values;
}

std::string write(const ConfigMap& values) {
    zel::SecureString content;
    ConfigTable table(values);
    LocalFileDocument::getDataString(table, content);
    zel::SecureBuffer clear;
    content.decrypt(clear);
    return {clear.getData(), clear.getLength()};
}

} // namespace

TEST(LocalFileDocument, ReadsElementsAndAttributesIgnoringCase) {
    EXPECT_THAT(read("<r><userConfig NAME='Foo' Value='Bar'/></r>"), ElementsAre(Pair(L"foo", L"Bar")));
    EXPECT_THAT(read("<r><USERCONFIG other='x' value=' v ' name='\xC3\x89'>text</USERCONFIG></r>"),
                ElementsAre(Pair(L"\u00E9", L" v ")));
}

TEST(LocalFileDocument, ReadsEveryElementIncludingTheRoot) {
    EXPECT_THAT(read("<a><b><USERCONFIG name='k' value='v'><userconfig name='m' value='w'/></USERCONFIG></b></a>"),
                ElementsAre(Pair(L"k", L"v"), Pair(L"m", L"w")));
    EXPECT_THAT(read("<userConfig name='k' value='v'/><!-- behind -->"), ElementsAre(Pair(L"k", L"v")));
}

TEST(LocalFileDocument, AnElementComesBeforeTheElementsInIt) {
    EXPECT_THAT(read("<a><userConfig name='k' value='outer'><userConfig name='K' value='inner'/></userConfig></a>"),
                ElementsAre(Pair(L"k", L"outer")));
}

TEST(LocalFileDocument, IgnoresOtherElementsAttributesAndTextWithoutALine) {
    const testing_host::LogRecorder log;
    EXPECT_THAT(read("<r><user name='k' value='v'/><k>v</k></r>"), IsEmpty());
    EXPECT_THAT(read("<r other='x'>text<userConfig names='k' value='v' other='x'>text</userConfig></r>"), IsEmpty());
    EXPECT_THAT(read("<r/>"), IsEmpty());
    EXPECT_THAT(log.getRecords(), IsEmpty());
}

TEST(LocalFileDocument, TheFirstElementOfAKeyWins) {
    EXPECT_THAT(read("<r><userConfig name='k' value='1'/><userConfig name='K' value='2'/></r>"),
                ElementsAre(Pair(L"k", L"1")));
}

TEST(LocalFileDocument, TheLastOfSeveralAttributesWins) {
    EXPECT_THAT(read("<r><userConfig name='a' NAME='b' value='1' Value='2'/></r>"), ElementsAre(Pair(L"b", L"2")));
}

TEST(LocalFileDocument, IgnoresASecondElementOfAKeyWithoutALine) {
    const testing_host::LogRecorder log;
    EXPECT_THAT(read("<r><userConfig name='k' value='first'/><userConfig name='K' value='second'/></r>"),
                ElementsAre(Pair(L"k", L"first")));
    EXPECT_THAT(log.getRecords(), IsEmpty());
}

TEST(LocalFileDocument, IgnoresAnEmptyKeyAndReadsAnEmptyValue) {
    EXPECT_THAT(read("<r><userConfig name='' value='v'/><userConfig value='v'/><userConfig name='k'/>"
                     "<userConfig name='l' value=''/></r>"),
                ElementsAre(Pair(L"k", L""), Pair(L"l", L"")));
}

TEST(LocalFileDocument, ResolvesEntitiesOfAttributesButReadsNoElementsInEntities) {
    EXPECT_THAT(read("<!DOCTYPE r [<!ENTITY e 'x'><!ENTITY u \"<userConfig name='no' value='1'/>\">]>"
                     "<r><userConfig name='k&e;' value='a&e;&lt;&#x62;'/>&u;</r>"),
                ElementsAre(Pair(L"kx", L"ax<b")));
}

TEST(LocalFileDocument, IgnoresEntriesBeyondTheLimitOfEntityExpansion) {
    const testing_host::LogRecorder log;
    std::string references;
    for (int count = 0; count < 200'000; ++count) {
        references += "&a;";
    }
    const ConfigMap values =
        read("<!DOCTYPE r [<!ENTITY a 'x'>]><r><userConfig name='first' value='" + references +
             "'/><userConfig name='second' value='" + references + "'/><userConfig name='third' value='v'/></r>");
    EXPECT_THAT(values, ElementsAre(Pair(L"first", std::wstring(200'000, L'x')), Pair(L"third", L"v")));
    EXPECT_THAT(log.getTexts("ConfigService-LocalFileConfigStore"),
                ElementsAre("Error entities expand too far - entry ignored"));
    EXPECT_EQ(log.getTexts(ZelLogLevel::Error).size(), 1U);
    EXPECT_THAT(read(xml_test::billionLaughs("<r><userConfig name='k' value='&a9;'/></r>")), IsEmpty());
}

TEST(LocalFileDocument, RenamesTheOldVoicemailKeyBeforeCheckingForDuplicates) {
    const std::string old = "<userConfig name='vvm_MAILSTORE_Server_0' value='old'/>";
    const std::string current = "<userConfig name='VoicemailPrimaryServer' value='new'/>";
    EXPECT_THAT(read("<r>" + old + "</r>"), ElementsAre(Pair(L"VoicemailPrimaryServer", L"old")));
    EXPECT_THAT(read("<r>" + old + current + "</r>"), ElementsAre(Pair(L"VoicemailPrimaryServer", L"old")));
    EXPECT_THAT(read("<r>" + current + old + "</r>"), ElementsAre(Pair(L"voicemailprimaryserver", L"new")));
    EXPECT_THAT(read("<r>" + old + "</r>", "any other"), ElementsAre(Pair(L"VoicemailPrimaryServer", L"old")));
    EXPECT_THAT(read("<r>" + old + current + "</r>", "LUMORA-config-defaults.xml"),
                ElementsAre(Pair(L"voicemailprimaryserver", L"new"), Pair(L"vvm_mailstore_server_0", L"old")));
}

TEST(LocalFileDocument, WritesTheExpectedDocument) {
    EXPECT_EQ(
        write({{L"Beta", L"<&>\"'\u00E9\t\r\n"}, {L"alpha", L""}, {L"c_d", L" v "}}),
        xml_test::localDocument(" <userConfig name=\"alpha\" value=\"\"/>\n"
                                " <userConfig name=\"Beta\" value=\"&lt;&amp;&gt;&quot;'\xC3\xA9&#9;&#13;&#10;\"/>\n"
                                " <userConfig name=\"c_d\" value=\" v \"/>\n"));
    EXPECT_EQ(write({}), xml_test::localDocument(""));
}

TEST(LocalFileDocument, LeavesTheTextUnchangedWithoutMemory) {
    zel::SecureString content("left over");
    for (const std::size_t limit : {0U, 500U}) { // enough for nothing, and for no writer
        const xml_test::XmlMemoryLimit memory(limit);
        ConfigTable table({{L"k", std::wstring(500'000, L'x')}});
        LocalFileDocument::getDataString(table, content);
    }
    std::string text;
    content.withClearText([&](std::string_view clear) { text = clear; });
    EXPECT_EQ(text, "left over");
}

TEST(LocalFileDocument, ReadsBackWhatItWroteExceptTheCaseOfKeys) {
    EXPECT_THAT(read(write({{L"Key a<b", L" <&>\"'\t\r\n\u00E9 "}, {L"empty", L""}})),
                ElementsAre(Pair(L"empty", L""), Pair(L"key a<b", L" <&>\"'\t\r\n\u00E9 ")));
}

TEST(LocalFileDocument, ReplacesCharactersThatWouldMakeTheFileUnreadable) {
    const testing_host::LogRecorder log;
    const ConfigMap values = {{L"bad", std::wstring(L"secret\0\x02\xFFFF", 9)}, {L"good", L"v"}};
    EXPECT_THAT(read(write(values)), ElementsAre(Pair(L"bad", L"secret\uFFFD\uFFFD\uFFFD"), Pair(L"good", L"v")));
    EXPECT_THAT(read(write({{L"k\x01", L"v"}})), ElementsAre(Pair(L"k\uFFFD", L"v")));
    EXPECT_EQ(log.getTexts(ZelLogLevel::Warning).front(),
              "Characters that XML can't carry are replaced in the entry of key: bad");
    EXPECT_FALSE(log.mentions("secret"));
}
