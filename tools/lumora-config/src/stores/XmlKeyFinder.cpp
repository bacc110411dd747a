#include "XmlKeyFinder.h"

#include <kyr/StringUtils.h>

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <memory>
#include <new>
#include <span>

namespace lumora_config {

namespace {

// A group is at depth 1, a key of a group at depth 2, and "userConfig" is a key at both.
constexpr int depthOfKeys = 2;
// The library passes five pointers for each attribute: name, prefix, URI, begin and end of the value.
constexpr int pointersPerAttribute = 5;

struct ParserDeleter {
    void operator()(xmlParserCtxt* context) const {
        xmlFreeDoc(context->myDoc);
        xmlFreeParserCtxt(context);
    }
};

std::string_view toView(const xmlChar* text) {
    return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

XmlKeyFinder& finderOf(void* parser) {
    return *static_cast<XmlKeyFinder*>(static_cast<xmlParserCtxt*>(parser)->_private);
}

/// Returns the "name" attribute of an element, case-insensitively, or "".
std::string_view nameAttribute(const xmlChar** attributes, int count) {
    const std::span all(attributes, static_cast<std::size_t>(count) * pointersPerAttribute);
    for (std::size_t i = 0; i < all.size(); i += pointersPerAttribute) {
        if (KyrCoreUtils::caseInsensitiveStringEquals(toView(all[i]), std::string_view("name"))) {
            return {reinterpret_cast<const char*>(all[i + 3]), static_cast<std::size_t>(all[i + 4] - all[i + 3])};
        }
    }
    return {};
}

} // namespace

KeyPlaces XmlKeyFinder::find(std::string_view content, const std::string& file, Form form) {
    XmlKeyFinder finder(file, form);
    finder.parse(content);
    return std::move(finder.places);
}

void XmlKeyFinder::parse(std::string_view content) {
    xmlInitParser();
    const std::unique_ptr<xmlParserCtxt, ParserDeleter> context(
        xmlCreateMemoryParserCtxt(content.data(), static_cast<int>(content.size())));
    if (!context) {
        return; // the library rejects an empty document here
    }
    // Without handlers for text the library builds no tree. It counts lines as an int, beyond the limit of a tree.
    xmlSAXHandler handlers{};
    handlers.initialized = XML_SAX2_MAGIC;
    handlers.internalSubset = &onDocumentType;
    handlers.startElementNs = &onStart;
    handlers.endElementNs = &onEnd;
    *context->sax = handlers;
    context->_private = this;
    xmlCtxtUseOptions(context.get(), XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
    xmlParseDocument(context.get());
}

void XmlKeyFinder::onDocumentType(void* parser, const unsigned char* /*name*/, const unsigned char* /*publicId*/,
                                  const unsigned char* /*systemId*/) {
    xmlStopParser(static_cast<xmlParserCtxt*>(parser));
}

// NOLINTNEXTLINE(readability-function-size): the library defines the parameters
void XmlKeyFinder::onStart(void* parser, const unsigned char* name, const unsigned char* /*prefix*/,
                           const unsigned char* /*uri*/, int /*namespaceCount*/, const unsigned char** /*namespaces*/,
                           int attributeCount, int /*defaultedCount*/, const unsigned char** attributes) {
    auto& finder = finderOf(parser);
    finder.recordElement(toView(name), attributes, attributeCount,
                         static_cast<std::size_t>(xmlSAX2GetLineNumber(parser)));
    ++finder.depth;
}

void XmlKeyFinder::onEnd(void* parser, const unsigned char* /*name*/, const unsigned char* /*prefix*/,
                         const unsigned char* /*uri*/) {
    --finderOf(parser).depth;
}

void XmlKeyFinder::recordElement(std::string_view name, const unsigned char** attributes, int attributeCount,
                                 std::size_t line) {
    if (isUserConfig(name)) {
        add(nameAttribute(attributes, attributeCount), line);
    } else if (form != Form::UserConfig && depth == depthOfKeys) {
        add(name, line);
    }
}

bool XmlKeyFinder::isUserConfig(std::string_view name) const {
    const bool isAtDepth = form == Form::UserConfig || (form == Form::Both && depth > 0 && depth <= depthOfKeys);
    return isAtDepth && KyrCoreUtils::caseInsensitiveStringEquals(name, std::string_view("userConfig"));
}

void XmlKeyFinder::add(std::string_view key, std::size_t line) {
    if (!key.empty()) {
        places.try_emplace(KyrCoreUtils::toWideString(key), FilePlace{file, line});
    }
}

} // namespace lumora_config
