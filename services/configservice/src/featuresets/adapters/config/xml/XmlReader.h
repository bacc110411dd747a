#pragma once

#include "XmlPlainElements.h"

#include <libxml/tree.h>

#include <memory>
#include <optional>
#include <string>

namespace ZelUnified {

using XmlDocument = std::shared_ptr<xmlDoc>;

/// Parses under XmlGuard. A text that is not well-formed, too long, or beyond the library's limits of depth and size,
/// gives no document.
class XmlReader {
public:
    /// In bytes. What the library itself refuses differs between its versions.
    static constexpr std::size_t sizeLimit = std::size_t{64} * 1024 * 1024;

    /// A compressed file gives none, nor does what is no regular file.
    static XmlDocument readFile(const std::string& path);
    /// The document shares nothing with others: its texts are not in a dictionary. A text with a zero in it gives none.
    static XmlDocument parseDoc(const std::string& text);
    /// Hands plain elements out instead of keeping them in the document. They count only if a document comes.
    static XmlDocument parseDoc(const std::string& text, const XmlPlainElements::Take& take);
    static XmlDocument readMemory(const std::string& text, const std::string& url);

    static std::string getName(const xmlNode& node);
    static std::string getName(const xmlAttr& attribute);

    /// What the entities of one document's attributes may expand to, in bytes and steps together. The library itself
    /// sets no limit to nested entities there.
    static constexpr std::size_t expansionLimit = 1'000'000;
    /// The text with its entities resolved, which `budget` pays for; nothing when it does not suffice.
    static std::optional<std::string> getText(const xmlAttr& attribute, std::size_t& budget);
};

} // namespace ZelUnified
