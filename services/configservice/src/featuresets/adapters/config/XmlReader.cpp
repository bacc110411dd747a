#include "XmlReader.h"

#include "XmlGuard.h"

#include <libxml/entities.h>
#include <libxml/parser.h>
#include <openssl/crypto.h>

#include <cstring>
#include <filesystem>
#include <system_error>

namespace ZelUnified {

namespace {

XmlDocument own(xmlDocPtr document) {
    // An empty owner for no document: callers test it as they would the pointer.
    return document == nullptr ? nullptr : XmlDocument(document, &xmlFreeDoc);
}

std::string toText(const xmlChar* text) {
    return text == nullptr ? std::string() : std::string(reinterpret_cast<const char*>(text));
}

std::size_t lengthOf(const xmlChar* text) {
    return text == nullptr ? 0 : std::strlen(reinterpret_cast<const char*>(text));
}

/// Takes what the entities among `node` and its siblings expand to from `budget`; false when it does not suffice.
bool payForEntities(const xmlDoc* document, const xmlNode* node, std::size_t& budget, int depth) {
    constexpr int deepest = 256;
    for (; node != nullptr; node = node->next) {
        const bool isReference = node->type == XML_ENTITY_REF_NODE;
        const xmlEntity* entity = isReference ? xmlGetDocEntity(document, node->name) : nullptr;
        const std::size_t cost = 1 + (depth > 0 ? lengthOf(isReference ? nullptr : node->content) : 0) +
                                 (entity != nullptr && entity->children == nullptr ? lengthOf(entity->content) : 0);
        if (cost > budget) {
            return false;
        }
        budget -= cost;
        if (entity != nullptr && entity->children != nullptr &&
            (depth == deepest || !payForEntities(document, entity->children, budget, depth + 1))) {
            return false;
        }
    }
    return true;
}

} // namespace

XmlDocument XmlReader::readFile(const std::string& path) {
    std::error_code unknown;
    const auto size = std::filesystem::file_size(path, unknown);
    if (!unknown && size > sizeLimit) {
        return nullptr;
    }
    const XmlGuard guard;
    return own(xmlReadFile(path.c_str(), nullptr, 0));
}

XmlDocument XmlReader::parseDoc(const std::string& text) {
    if (text.size() > sizeLimit) {
        return nullptr;
    }
    const XmlGuard guard;
    return own(xmlParseDoc(reinterpret_cast<const xmlChar*>(text.c_str())));
}

XmlDocument XmlReader::readMemory(const std::string& text, const std::string& url) {
    if (text.size() > sizeLimit) {
        return nullptr;
    }
    const XmlGuard guard;
    return own(xmlReadMemory(text.data(), static_cast<int>(text.size()), url.c_str(), nullptr, 0));
}

std::string XmlReader::getName(const xmlNode& node) {
    return toText(node.name);
}

std::string XmlReader::getName(const xmlAttr& attribute) {
    return toText(attribute.name);
}

std::optional<std::string> XmlReader::getText(const xmlAttr& attribute, std::size_t& budget) {
    const bool isPlain = attribute.children == nullptr ||
                         (attribute.children->type == XML_TEXT_NODE && attribute.children->next == nullptr);
    if (!isPlain && !payForEntities(attribute.doc, attribute.children, budget, 0)) {
        return std::nullopt;
    }
    xmlChar* text = xmlNodeListGetString(attribute.doc, attribute.children, 1);
    std::string result = toText(text);
    if (text != nullptr) {
        OPENSSL_cleanse(text, result.size());
        xmlFree(text);
    }
    return result;
}

} // namespace ZelUnified
