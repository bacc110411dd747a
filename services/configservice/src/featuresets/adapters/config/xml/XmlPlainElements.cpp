#include "XmlPlainElements.h"

#include "secure/WipeBytes.h"

#include <utility>

namespace ZelUnified {

namespace {

constexpr int depthOfGroup = 2;

/// In bytes. A longer text is added to the tree, where the library's own limits apply.
constexpr std::size_t longestText = std::size_t{64} * 1024;

} // namespace

XmlPlainElements::XmlPlainElements(xmlParserCtxt& parser, const Receiver& receiver)
    : context(parser), receive(receiver), treeHandlers(*parser.sax) {
    text.reserve(longestText);
    context._private = this;
    xmlSAXHandler& handlers = *context.sax;
    handlers.internalSubset = &onInternalSubset;
    handlers.startElementNs = &onStartElement;
    handlers.endElementNs = &onEndElement;
    handlers.characters = &onCharacters;
    handlers.ignorableWhitespace = &onCharacters;
    handlers.cdataBlock = &onCdata;
    handlers.comment = &onComment;
    handlers.processingInstruction = &onInstruction;
}

XmlPlainElements::~XmlPlainElements() {
    zel::wipeBytes(text.data(), text.size());
    *context.sax = treeHandlers;
    context._private = nullptr;
}

XmlPlainElements& XmlPlainElements::getInstance(void* parser) noexcept {
    return *static_cast<XmlPlainElements*>(static_cast<xmlParserCtxt*>(parser)->_private);
}

void XmlPlainElements::onInternalSubset(void* parser, const xmlChar* name, const xmlChar* publicId,
                                        const xmlChar* systemId) {
    auto& self = getInstance(parser);
    self.leaveToTree();
    self.treeHandlers.internalSubset(parser, name, publicId, systemId);
}

// The library defines the parameters.
// NOLINTNEXTLINE(readability-function-size)
void XmlPlainElements::onStartElement(void* parser, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri,
                                      int namespaceCount, const xmlChar** namespaces, int attributeCount,
                                      int defaultedCount, const xmlChar** attributes) {
    auto& self = getInstance(parser);
    const bool isPlain = prefix == nullptr && uri == nullptr && namespaceCount == 0 && attributeCount == 0;
    if (self.handsOut && self.depth == depthOfGroup && isPlain) {
        self.beginPlain(name);
        return;
    }
    if (self.depth >= depthOfGroup) {
        self.leaveToTree();
    }
    ++self.depth;
    self.treeHandlers.startElementNs(parser, name, prefix, uri, namespaceCount, namespaces, attributeCount,
                                     defaultedCount, attributes);
}

void XmlPlainElements::onEndElement(void* parser, const xmlChar* name, const xmlChar* prefix, const xmlChar* uri) {
    auto& self = getInstance(parser);
    --self.depth;
    if (self.pending != nullptr) {
        self.endPlain();
        return;
    }
    self.treeHandlers.endElementNs(parser, name, prefix, uri);
}

void XmlPlainElements::onCharacters(void* parser, const xmlChar* characters, int length) {
    auto& self = getInstance(parser);
    if (self.handsOut && self.pending == nullptr) {
        return; // ignores text between groups and between keys
    }
    if (!self.append({reinterpret_cast<const char*>(characters), static_cast<std::size_t>(length)})) {
        self.treeHandlers.characters(parser, characters, length);
    }
}

void XmlPlainElements::onCdata(void* parser, const xmlChar* characters, int length) {
    auto& self = getInstance(parser);
    self.leaveToTreeInElement(); // the tree distinguishes CDATA from text, which matters if the element contains more
                                 // than text
    self.treeHandlers.cdataBlock(parser, characters, length);
}

void XmlPlainElements::onComment(void* parser, const xmlChar* comment) {
    auto& self = getInstance(parser);
    self.leaveToTreeInElement();
    self.treeHandlers.comment(parser, comment);
}

void XmlPlainElements::onInstruction(void* parser, const xmlChar* target, const xmlChar* data) {
    auto& self = getInstance(parser);
    self.leaveToTreeInElement();
    self.treeHandlers.processingInstruction(parser, target, data);
}

void XmlPlainElements::beginPlain(const xmlChar* name) {
    pending = name;
    ++depth;
}

/// Appends to the pending element. Returns false if the characters belong to the tree.
bool XmlPlainElements::append(std::string_view characters) {
    if (pending == nullptr) {
        return false;
    }
    if (text.size() + characters.size() > longestText) {
        leaveToTree();
        return false;
    }
    text += characters;
    return true;
}

/// Passes the element to the receiver. An exception must not pass through the library, so this stores it and stops the
/// parser.
void XmlPlainElements::endPlain() {
    const xmlChar* const name = std::exchange(pending, nullptr);
    try {
        receive(reinterpret_cast<const char*>(name), text);
    } catch (...) {
        failure = std::current_exception();
        xmlStopParser(&context);
    }
    zel::wipeBytes(text.data(), text.size());
    text.clear();
}

/// Switches to the tree if a plain element is open. Called for content that a plain element cannot contain; between
/// elements such content is ignored.
void XmlPlainElements::leaveToTreeInElement() {
    if (pending != nullptr) {
        leaveToTree();
    }
}

/// Switches to the tree: adds the open element and everything that follows.
void XmlPlainElements::leaveToTree() {
    handsOut = false;
    if (pending == nullptr) {
        return;
    }
    treeHandlers.startElementNs(&context, std::exchange(pending, nullptr), nullptr, nullptr, 0, nullptr, 0, 0, nullptr);
    if (!text.empty()) {
        treeHandlers.characters(&context, reinterpret_cast<const xmlChar*>(text.data()), static_cast<int>(text.size()));
    }
    zel::wipeBytes(text.data(), text.size());
    text.clear();
}

} // namespace ZelUnified
