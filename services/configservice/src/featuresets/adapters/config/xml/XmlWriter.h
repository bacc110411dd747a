#pragma once

#include "XmlGuard.h"

#include <libxml/xmlwriter.h>

#include <memory>
#include <string>

namespace ZelUnified {

/// Builds one document in memory with libxml2's text writer: UTF-8, indented. The bytes are those that the library's
/// own operations would write: without a declaration, an attribute holds ASCII and references to all other characters.
/// Texts may be secrets: they never enter the library, and the document is zeroed at the end.
class XmlWriter {
public:
    enum class Declaration { With, Without };

    explicit XmlWriter(Declaration declaration = Declaration::With);
    ~XmlWriter();
    XmlWriter(const XmlWriter&) = delete;
    XmlWriter& operator=(const XmlWriter&) = delete;

    /// False when the library could not give what is needed; nothing comes of what is written then.
    bool isReady() const { return writer != nullptr; }

    /// Names are not checked.
    void startElement(const std::string& name);
    void endElement();
    /// An element with a text. Without a name it is left out. False when U+FFFD took the place of a character that XML
    /// can't carry.
    bool writeElement(const std::string& name, std::wstring_view text);
    /// Right behind startElement() or another attribute. The result is as that of writeElement().
    bool writeAttribute(const std::string& name, std::wstring_view text);
    /// Ends all that is open and gives the document, which is the caller's to wipe, or nothing when a part of it could
    /// not be written. Call once.
    std::string finish();

    /// Puts U+FFFD in the place of each character that XML 1.0 can't carry, NUL included: one of them would make the
    /// whole document unreadable. True when there was one.
    static bool replaceIllegalCharacters(std::string& utf8);

private:
    struct WriterDeleter {
        void operator()(xmlTextWriter* released) const { xmlFreeTextWriter(released); }
    };

    /// Remembers the failure that the library's answer tells of.
    void note(int written) { failed = failed || written < 0; }
    /// Has the library write all that it holds back. False when nothing may follow.
    bool flush();

    const bool attributesAreAscii;
    const XmlGuard guard; ///< A setting of the thread: the writer stays on it.
    bool failed = false;
    // The writer goes before what it writes into.
    std::string document;
    xmlOutputBuffer* output = nullptr; ///< The writer's.
    std::unique_ptr<xmlTextWriter, WriterDeleter> writer;
};

} // namespace ZelUnified
