#pragma once

#include "XmlPlainElements.h"

#include <libxml/tree.h>

#include <memory>
#include <optional>
#include <string>

namespace ZelUnified {

using XmlDocument = std::shared_ptr<xmlDoc>;

/// Parses XML under an XmlGuard. Returns null if the text is not well-formed, too long, or beyond the library's limits
/// of depth and size.
class XmlReader {
public:
    /// In bytes. The library's own limits differ between its versions.
    static constexpr std::size_t sizeLimit = std::size_t{64} * 1024 * 1024;

    /// Parses a file. Returns null for a compressed file and for anything but a regular file.
    static XmlDocument readFile(const std::string& path);
    /// Parses a text. The document shares no memory with others: its texts are not in a dictionary. Returns null if
    /// `text` contains a NUL, except at its end.
    static XmlDocument parseDoc(const std::string& text);
    /// Passes plain elements to `receiver` instead of keeping them in the document. They are valid only if this returns
    /// a document.
    static XmlDocument parseDoc(const std::string& text, const XmlPlainElements::Receiver& receiver);
    static XmlDocument readMemory(const std::string& text, const std::string& url);

    static std::string getName(const xmlNode& node);
    static std::string getName(const xmlAttr& attribute);

    /// Limit for the expansion of entities in the attributes of one document: bytes and steps together. The library
    /// itself does not limit nested entities there.
    static constexpr std::size_t expansionLimit = 1'000'000;
    /// Returns the text with its entities resolved, whose expansion reduces `budget`. Returns std::nullopt if the
    /// budget is too small.
    static std::optional<std::string> getText(const xmlAttr& attribute, std::size_t& budget);
};

} // namespace ZelUnified
