#include "featuresets/adapters/config/xml/XmlScrubber.h"

#include <gtest/gtest.h>

#include <string>

using ZelUnified::XmlReader;
using ZelUnified::XmlScrubber;

namespace {

std::string textOf(const xmlNode* node) {
    return reinterpret_cast<const char*>(node->content);
}

} // namespace

TEST(XmlScrubber, ZeroesTextCDataAndAttributesBelowAnElement) {
    const auto document = XmlReader::parseDoc("<r a='attribute text'>outer text<k><![CDATA[inner data]]></k></r>");
    xmlNode* root = xmlDocGetRootElement(document.get());
    const xmlNode* attribute = root->properties->children;
    const xmlNode* outer = root->children;
    const xmlNode* inner = outer->next->children;
    ASSERT_EQ(textOf(inner), "inner data");
    XmlScrubber(document).scrubElement(*root);
    EXPECT_EQ(textOf(attribute), "");
    EXPECT_EQ(textOf(outer), "");
    EXPECT_EQ(textOf(inner), "");
}

TEST(XmlScrubber, ZeroesSharedTextsWhenItIsDestroyed) {
    // Short texts are in the document's dictionary, where equal texts and names share them.
    const auto document = XmlReader::readMemory("<r><k>abc</k><l>abc</l><abc/></r>", "test");
    const xmlNode* root = xmlDocGetRootElement(document.get());
    xmlNode* first = root->children->children;
    const xmlNode* second = root->children->next->children;
    {
        XmlScrubber scrubber(document);
        scrubber.scrubText(*first);
        EXPECT_EQ(textOf(second), "abc");
        EXPECT_EQ(XmlReader::getName(*root->last), "abc");
    }
    EXPECT_EQ(textOf(first), "");
}

TEST(XmlScrubber, ZeroesAnUnsharedTextImmediately) {
    const auto document = XmlReader::readMemory("<r>a text too long for the dictionary</r>", "test");
    xmlNode* text = xmlDocGetRootElement(document.get())->children;
    XmlScrubber scrubber(document);
    scrubber.scrubText(*text);
    EXPECT_EQ(textOf(text), "");
}

TEST(XmlScrubber, LeavesTheContentOfEntitiesUnchanged) {
    const auto document = XmlReader::parseDoc("<!DOCTYPE r [<!ENTITY e 'entity text'>]><r><k>&e;</k><l>&e;</l></r>");
    xmlNode* root = xmlDocGetRootElement(document.get());
    xmlNode* reference = root->children->children;
    ASSERT_EQ(reference->type, XML_ENTITY_REF_NODE);
    {
        XmlScrubber scrubber(document);
        scrubber.scrubElement(*root);
        scrubber.scrubText(*reference);
    }
    EXPECT_EQ(textOf(root->children->next->children), "entity text");
}
