#include "XmlReader.h"

#include "XmlGuard.h"

#include <libxml/entities.h>
#include <libxml/parser.h>
#include <openssl/crypto.h>

#include <filesystem>
#include <memory>
#include <span>
#include <string_view>
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

std::string_view toText(const xmlChar* text) {
    return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

/// Appends the text of `node` and its siblings, their entities resolved; false when `budget`, which the content of
/// entities is paid from, does not suffice. The library's own function begins the text anew with each reference, so its
/// time grows with the square of their number.
bool appendText(const xmlNode* node, int depth, std::size_t& budget, std::string& text) {
    constexpr int deepest = 256;
    for (; node != nullptr; node = node->next) {
        const bool isReference = node->type == XML_ENTITY_REF_NODE;
        const xmlEntity* entity = isReference ? xmlGetDocEntity(node->doc, node->name) : nullptr;
        const bool isNested = entity != nullptr && entity->children != nullptr;
        const std::string_view part = isNested ? "" : toText(entity != nullptr ? entity->content : node->content);
        const std::size_t cost = isReference || depth > 0 ? 1 + part.size() : 0;
        if (cost > budget) {
            return false;
        }
        budget -= cost;
        text += part;
        if (isNested && (depth == deepest || !appendText(entity->children, depth + 1, budget, text))) {
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
    // The library would end at a zero and take what stands before it for the whole.
    if (text.size() > sizeLimit || text.find('\0') != std::string::npos) {
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
    return std::string(toText(node.name));
}

std::string XmlReader::getName(const xmlAttr& attribute) {
    return std::string(toText(attribute.name));
}

std::optional<std::string> XmlReader::getText(const xmlAttr& attribute, std::size_t& budget) {
    std::string text;
    if (!appendText(attribute.children, 0, budget, text)) {
        return std::nullopt;
    }
    return text;
}

} // namespace ZelUnified
