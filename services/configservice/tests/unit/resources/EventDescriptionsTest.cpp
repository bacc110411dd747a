#include <zel/Resources.h>

#include <ConfigServiceIds.h>
#include <TemporaryProfile.h>
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

using testing::HasSubstr;
using testing::SizeIs;
using testing_host::readFile;
using zel::Resources;

namespace {

constexpr std::string_view mark = "\xef\xbb\xbf";

std::string nameOf(std::string_view tag) {
    return "CONFIGSERVICEEVENTDESCRIPTIONS_" + std::string(tag) + ".XML";
}

using Document = std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)>;

Document parse(std::string_view content) {
    return {xmlReadMemory(content.data(), static_cast<int>(content.size()), nullptr, nullptr, XML_PARSE_NONET),
            &xmlFreeDoc};
}

std::vector<xmlNode*> elementsOf(const xmlNode* parent) {
    std::vector<xmlNode*> elements;
    for (auto* node = parent->children; node != nullptr; node = node->next) {
        if (node->type == XML_ELEMENT_NODE) {
            elements.push_back(node);
        }
    }
    return elements;
}

std::string toText(const xmlChar* text) {
    return text == nullptr ? std::string() : reinterpret_cast<const char*>(text);
}

std::string nameOf(const xmlNode* element) {
    return toText(element->name);
}

std::string take(xmlChar* text) {
    const std::string taken = toText(text);
    xmlFree(text);
    return taken;
}

std::string attributeOf(const xmlNode* element, const char* name) {
    return take(xmlGetProp(element, reinterpret_cast<const xmlChar*>(name)));
}

/// The document of one language.
class EventDescriptions : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override { ASSERT_TRUE(found) << nameOf(GetParam()); }

    const std::optional<std::string_view> found = Resources::find("EVENTXML", nameOf(GetParam()));
};

} // namespace

TEST_P(EventDescriptions, HasOneServiceWithOneEvent) {
    const auto document = parse(*found);
    ASSERT_TRUE(document);
    const auto* root = xmlDocGetRootElement(document.get());
    EXPECT_EQ(nameOf(root), "ServiceEventDescriptions");
    const auto services = elementsOf(root);
    ASSERT_THAT(services, SizeIs(1));
    EXPECT_EQ(nameOf(services[0]), "Service");
    EXPECT_EQ(attributeOf(services[0], "id"), "1300");
    const auto events = elementsOf(services[0]);
    ASSERT_THAT(events, SizeIs(1));
    EXPECT_EQ(nameOf(events[0]), "Event");
    EXPECT_EQ(attributeOf(events[0], "code"), "1");
    EXPECT_FALSE(take(xmlNodeGetContent(events[0])).empty());
}

TEST_P(EventDescriptions, ContainsTheCodeAsACommentAfterTheEvent) {
    EXPECT_THAT(std::string(*found), HasSubstr("</Event> <!--TFTPDownloadFailed-->\r\n"));
}

TEST_P(EventDescriptions, BeginsWithAByteOrderMarkAndEndsEachLineWithCrLf) {
    EXPECT_TRUE(found->starts_with(mark));
    EXPECT_EQ(found->find(mark, mark.size()), std::string_view::npos);
    EXPECT_TRUE(found->ends_with("\r\n"));
    for (std::size_t i = 0; i < found->size(); ++i) {
        if ((*found)[i] == '\n') {
            EXPECT_EQ((*found)[i - 1], '\r') << "at " << i;
        } else if ((*found)[i] == '\r') {
            EXPECT_EQ((*found)[i + 1], '\n') << "at " << i;
        }
    }
}

TEST_P(EventDescriptions, EqualsTheFile) {
    EXPECT_EQ(*found, readFile(std::filesystem::path(RESOURCE_FOLDER) / nameOf(GetParam())));
}

TEST_P(EventDescriptions, IsInTheListOfResources) {
    const auto name = nameOf(GetParam());
    EXPECT_THAT(readFile(RESOURCE_LISTING), HasSubstr(name + " EVENTXML \""));
}

INSTANTIATE_TEST_SUITE_P(AllLanguages, EventDescriptions,
                         testing::Values("AR-SA", "BG-BG", "CA-ES", "CS-CZ", "DA-DK", "DE-DE", "EL-GR", "EN-US",
                                         "ES-ES", "ES-LAT", "FI-FI", "FR-FR", "HE-IL", "HR-HR", "HU-HU", "IT-IT",
                                         "JA-JP", "KO-KR", "NB-NO", "NL-NL", "PL-PL", "PT-BR", "PT-PT", "RO-RO",
                                         "RU-RU", "SK-SK", "SL-SI", "SR-CS", "SV-SE", "TH-TH", "TR-TR", "ZH-CN",
                                         "ZH-TW"));

TEST(EventDescriptionsOfEnglish, EqualsTheExpectedText) {
    EXPECT_EQ(Resources::find("EVENTXML", "CONFIGSERVICEEVENTDESCRIPTIONS_EN-US.XML"),
              "\xef\xbb\xbf<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n"
              "<ServiceEventDescriptions>\r\n"
              "  <Service id=\"1300\">\r\n"
              "    <Event code=\"1\">Cannot connect with directory. Failed to download Lumora configuration "
              "file.</Event> <!--TFTPDownloadFailed-->\r\n"
              "  </Service>\r\n"
              "</ServiceEventDescriptions>\r\n");
}

TEST(EventDescriptionsInAll, ExistIn33Languages) {
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(RESOURCE_FOLDER)) {
        files += entry.path().extension() == ".XML" ? 1 : 0;
    }
    EXPECT_EQ(files, 33U);
}

TEST(EventDescriptionsInAll, ContainTheNumbersThatTheServiceRaises) {
    EXPECT_EQ(ZelUnified::configServiceId, 1300U);
    EXPECT_EQ(static_cast<int>(ZelUnified::ConfigServiceIdsEnum::TFTPDownloadFailed), 1);
}

TEST(EventDescriptionsInAll, AnUnknownTypeOrNameIsNotFound) {
    EXPECT_EQ(Resources::find("EVENTXML", nameOf("EN-GB")), std::nullopt);
    EXPECT_EQ(Resources::find("EVENTXML", nameOf("en-us")), std::nullopt);
    EXPECT_EQ(Resources::find("EVENTXML", ""), std::nullopt);
    EXPECT_EQ(Resources::find("XML", nameOf("EN-US")), std::nullopt);
}
