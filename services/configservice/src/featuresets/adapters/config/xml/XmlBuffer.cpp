#include "XmlBuffer.h"

#include "XmlLibrary.h"
#include "secure/WipeBytes.h"

#include <cstddef>
#include <cstring>

namespace ZelUnified {

namespace {

void wipeAndFree(xmlBuffer* buffer) {
    if (buffer->content != nullptr) {
        zel::wipeBytes(buffer->content, buffer->size);
    }
    xmlBufferFree(buffer);
}

/// Free space that the library requires in addition to its output.
constexpr std::size_t slack = std::size_t{16} * 1024;
constexpr std::size_t longestMarkup = 16; ///< Markup around a name or a text.

/// Returns an upper bound for the size of the escaped text.
std::size_t roomFor(const xmlChar* text) {
    constexpr std::size_t longestEscape = 6;
    std::size_t room = longestMarkup;
    for (; text != nullptr && *text != 0; ++text) {
        const bool isPlain = *text >= 0x20 && *text < 0x7F && std::strchr("<>&\"", *text) == nullptr;
        room += isPlain ? 1 : longestEscape;
    }
    return room;
}

std::size_t roomFor(const xmlNs* space) {
    return space == nullptr ? 0 : roomFor(space->prefix) + roomFor(space->href);
}

/// Returns an upper bound for the output of the node. The parser limits the depth of the recursion.
std::size_t roomFor(const xmlNode& node) {
    std::size_t room = 2 * roomFor(node.name);
    if (node.type == XML_ELEMENT_NODE) {
        room += 2 * roomFor(node.ns);
        for (const xmlNs* space = node.nsDef; space != nullptr; space = space->next) {
            room += roomFor(space);
        }
        for (const xmlAttr* attribute = node.properties; attribute != nullptr; attribute = attribute->next) {
            room += roomFor(attribute->name) + roomFor(attribute->ns);
            for (const xmlNode* part = attribute->children; part != nullptr; part = part->next) {
                room += roomFor(part->name) + roomFor(part->content);
            }
        }
    } else {
        room += roomFor(node.content);
    }
    // The child of an entity reference is the entity's declaration, which is not written.
    const xmlNode* child = node.type == XML_ELEMENT_NODE ? node.children : nullptr;
    for (; child != nullptr; child = child->next) {
        room += roomFor(*child);
    }
    return room;
}

} // namespace

XmlBuffer makeXmlBuffer(const xmlNode& node) {
    const XmlLibrary library;
    xmlBuffer* buffer = xmlBufferCreateSize(slack + roomFor(node));
    return buffer == nullptr ? nullptr : XmlBuffer(buffer, &wipeAndFree);
}

} // namespace ZelUnified
