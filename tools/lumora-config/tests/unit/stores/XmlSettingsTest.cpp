#include "stores/XmlSettings.h"

#include "output/Failure.h"

#include <TemporaryProfile.h>
#include <gmock/gmock.h>

namespace lumora_config {

namespace {

class XmlSettingsTest : public testing::Test {
protected:
    std::string write(std::string_view content) const {
        testing_host::writeFile(profile.root() / "doc.xml", content);
        return (profile.root() / "doc.xml").string();
    }

    std::vector<XmlSetting> read(std::string_view content) const { return readXmlSettings(write(content)); }

    std::string refusalOf(std::string_view content) const {
        try {
            read(content);
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.getCode(), ExitCode::Environment);
            return failure.what();
        }
        return "accepted";
    }

    const testing_host::TemporaryProfile profile;
};

MATCHER_P2(Setting, key, value, "") {
    return arg.key == key && arg.value == value;
}

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

} // namespace

TEST_F(XmlSettingsTest, ReadsTheElementsOfEveryGroup) {
    EXPECT_THAT(read("<r>x<g><A> 1 </A><B/></g><h><C><![CDATA[x]]>y</C></h></r>"),
                ElementsAre(Setting(L"A", L"1"), Setting(L"B", L""), Setting(L"C", L"xy")));
}

TEST_F(XmlSettingsTest, IgnoresElementsDirectlyUnderTheRoot) {
    EXPECT_THAT(read("<r><A>1</A></r>"), IsEmpty());
}

TEST_F(XmlSettingsTest, KeepsNestedXmlAsText) {
    EXPECT_THAT(read("<r><g><Rules><rule from=\"9\"/></Rules></g></r>"),
                ElementsAre(Setting(L"Rules", L"<Rules><rule from=\"9\"/></Rules>")));
}

TEST_F(XmlSettingsTest, ReadsUserConfigElements) {
    EXPECT_THAT(read("<r><userConfig name=\"A\" value=\"1\"/><g><USERCONFIG NAME=\"B\" Value=\"2\"/></g>"
                     "<userConfig value=\"nameless\"/></r>"),
                ElementsAre(Setting(L"A", L"1"), Setting(L"B", L"2")));
}

TEST_F(XmlSettingsTest, ReadsTheSensitiveMark) {
    const auto settings = read("<r><g><A Sensitive=\"TRUE\">1</A><B sensitive=\"no\">2</B></g></r>");
    ASSERT_EQ(settings.size(), 2U);
    EXPECT_TRUE(settings[0].sensitive);
    EXPECT_FALSE(settings[1].sensitive);
}

TEST_F(XmlSettingsTest, ReportsTheLineThatIsNotXmlWithoutQuotingIt) {
    const auto refusal = refusalOf("<r>\n<g>\n<A>secret-text</B>\n</g></r>");
    EXPECT_THAT(refusal, EndsWith("doc.xml: not XML, see line 3"));
}

TEST_F(XmlSettingsTest, RefusesAnEmptyFile) {
    EXPECT_THAT(refusalOf(""), HasSubstr("not XML"));
}

TEST_F(XmlSettingsTest, RefusesADocumentTypeSoThatNoEntityIsExpanded) {
    testing_host::writeFile(profile.root() / "other.txt", "planted");
    EXPECT_THAT(refusalOf("<!DOCTYPE r [<!ENTITY e SYSTEM \"other.txt\">]><r><g><A>&e;</A></g></r>"),
                HasSubstr("document type"));
}

TEST_F(XmlSettingsTest, PrintsNothing) {
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    refusalOf("<r><g><A>planted</g></r>");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST_F(XmlSettingsTest, DistinguishesAMissingFileFromAFolder) {
    try {
        readXmlSettings((profile.root() / "absent.xml").string());
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_THAT(failure.what(), EndsWith("absent.xml: no such file"));
    }
    try {
        readXmlSettings(profile.root().string());
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_THAT(failure.what(), EndsWith("not a regular file"));
    }
}

} // namespace lumora_config
