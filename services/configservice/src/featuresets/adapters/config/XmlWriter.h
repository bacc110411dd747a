#pragma once

#include "XmlBuffer.h"

#include <libxml/xmlwriter.h>

#include <memory>
#include <string>

namespace ZelUnified {

/// Builds one document in memory with libxml2's text writer: UTF-8, indented. The memory is zeroed at the end.
class XmlWriter {
public:
    enum class Declaration { With, Without };

    explicit XmlWriter(Declaration declaration = Declaration::With);
    ~XmlWriter();
    XmlWriter(const XmlWriter&) = delete;
    XmlWriter& operator=(const XmlWriter&) = delete;

    /// False when the library could not give what is needed; nothing may be written then.
    bool isReady() const { return writer != nullptr; }

    void startElement(const std::string& name);
    void endElement();
    /// An element with a text. The name is not checked, but without one the element is left out; the text is to be free
    /// of illegal characters.
    void writeElement(const std::string& name, const std::string& text);
    void writeAttribute(const std::string& name, const std::string& text);
    /// Ends all that is open and gives the document, or nothing when a part of it could not be written. Call once.
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

    bool failed = false;
    // The writer goes before the buffer that it writes into.
    XmlBuffer buffer;
    std::unique_ptr<xmlTextWriter, WriterDeleter> writer;
};

} // namespace ZelUnified
