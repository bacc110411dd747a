#pragma once

#include "XmlGuard.h"

#include <libxml/xmlwriter.h>

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

namespace ZelUnified {

/// Builds one document in memory with libxml2's text writer: UTF-8, indented. The output is identical to that of the
/// library's own operations: without a declaration, an attribute contains ASCII and references for all other
/// characters. Texts may be secrets: they are never passed to the library, and the destructor zeroes the document.
class XmlWriter {
public:
    enum class Declaration { With, Without };

    struct Attribute {
        std::string_view name;
        std::wstring_view text;
    };

    explicit XmlWriter(Declaration declaration = Declaration::With);
    ~XmlWriter();
    XmlWriter(const XmlWriter&) = delete;
    XmlWriter& operator=(const XmlWriter&) = delete;

    /// Returns false if the library could not allocate the writer. Everything written is then discarded.
    bool isReady() const { return writer != nullptr; }

    /// Starts an element. Does not validate the name.
    void startElement(const std::string& name);
    void endElement();
    /// Writes an element with a text. Does nothing if the name is empty. Returns false if a character that XML cannot
    /// represent was replaced with U+FFFD.
    bool writeElement(const std::string& name, std::wstring_view text);
    /// Writes an attribute; call directly after startElement() or another attribute. Returns the same as
    /// writeElement().
    bool writeAttribute(const std::string& name, std::wstring_view text);
    /// Writes an element without content below the root; call directly after the root's startElement() or another
    /// writeEmptyElement(). Does not call the library, whose calls for each element take more than half of the time to
    /// write a large document. Returns false if a character of any attribute was replaced.
    bool writeEmptyElement(std::string_view name, std::initializer_list<Attribute> attributes);
    /// Ends all open elements and returns the document, which the caller must wipe. Returns an empty string if a part
    /// of the document could not be written. Call once.
    std::string finish();

    /// Replaces each character that XML 1.0 cannot represent, including NUL, with U+FFFD: one such character would make
    /// the whole document unreadable. Returns true if it replaced any.
    static bool replaceIllegalCharacters(std::string& utf8);

private:
    struct WriterDeleter {
        void operator()(xmlTextWriter* released) const { xmlFreeTextWriter(released); }
    };

    /// Returns the same as writeElement().
    bool appendAttribute(std::string_view name, std::wstring_view text);
    /// Records a failure reported by the library.
    void recordResult(int written) { failed = failed || written < 0; }
    /// Flushes the library's pending output. Returns false if writing has failed; then nothing more may be written.
    bool flush();

    const bool attributesAreAscii;
    const XmlGuard guard; ///< Changes settings of the thread, so all calls must come from one thread.
    bool failed = false;
    bool isStartTagOpen = false;
    // Declared before `writer`, which must be destroyed first.
    std::string document;
    xmlOutputBuffer* output = nullptr; ///< Owned by the writer.
    std::unique_ptr<xmlTextWriter, WriterDeleter> writer;
};

} // namespace ZelUnified
