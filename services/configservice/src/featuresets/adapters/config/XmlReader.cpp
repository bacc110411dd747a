#include "XmlReader.h"

#include "XmlGuard.h"

#include <libxml/entities.h>
#include <libxml/parser.h>
#include <openssl/crypto.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <span>
#include <system_error>
#include <utility>

namespace ZelUnified {

namespace {

using ParserContext = std::unique_ptr<xmlParserCtxt, decltype(&xmlFreeParserCtxt)>;

XmlDocument own(xmlDocPtr document) {
    // An empty owner for no document: callers test it as they would the pointer.
    return document == nullptr ? nullptr : XmlDocument(document, &xmlFreeDoc);
}

/// Whether the parser still works on the bytes it was given. A conversion to UTF-8 puts other memory in their place.
bool isUnconverted(const xmlParserCtxt& context) {
    const xmlParserInput* input = context.input;
    return input != nullptr && input->buf != nullptr && input->buf->encoder == nullptr;
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

/// The library parses a copy of the text, which it would leave in memory that it frees.
XmlDocument XmlReader::parseDoc(const std::string& text) {
    if (text.size() > sizeLimit) {
        return nullptr;
    }
    const XmlGuard guard;
    const ParserContext context(xmlCreateDocParserCtxt(reinterpret_cast<const xmlChar*>(text.c_str())),
                                &xmlFreeParserCtxt);
    if (!context || context->input == nullptr) {
        return nullptr;
    }
    const std::span<const xmlChar> copy(context->input->base, context->input->end);
    xmlParseDocument(context.get());
    if (copy.data() != reinterpret_cast<const xmlChar*>(text.data()) && isUnconverted(*context)) {
        OPENSSL_cleanse(const_cast<xmlChar*>(copy.data()), copy.size());
    }
    const XmlDocument document = own(std::exchange(context->myDoc, nullptr));
    return context->wellFormed != 0 ? document : nullptr;
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
