#include "XmlScrubber.h"

#include "secure/WipeBytes.h"

#include <libxml/dict.h>

#include <cstring>

namespace ZelUnified {

namespace {

void wipe(xmlChar* text) {
    zel::wipeBytes(text, std::strlen(reinterpret_cast<const char*>(text)));
}

} // namespace

XmlScrubber::~XmlScrubber() {
    for (xmlChar* text : shared) {
        wipe(text);
    }
}

void XmlScrubber::scrubText(xmlNode& node) {
    const bool isText = node.type == XML_TEXT_NODE || node.type == XML_CDATA_SECTION_NODE;
    if (!isText || node.content == nullptr) {
        return;
    }
    if (document->dict != nullptr && xmlDictOwns(document->dict, node.content) == 1) {
        shared.push_back(node.content);
    } else {
        wipe(node.content);
    }
}

void XmlScrubber::scrubElement(xmlNode& element) {
    for (xmlAttr* attribute = element.properties; attribute != nullptr; attribute = attribute->next) {
        for (xmlNode* text = attribute->children; text != nullptr; text = text->next) {
            scrubText(*text);
        }
    }
    for (xmlNode* child = element.children; child != nullptr; child = child->next) {
        if (child->type == XML_ELEMENT_NODE) {
            scrubElement(*child);
        } else {
            scrubText(*child);
        }
    }
}

} // namespace ZelUnified
