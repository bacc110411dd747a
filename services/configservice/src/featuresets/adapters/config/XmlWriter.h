#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace ZelUnified {

/// Builds one document in memory, byte for byte as libxml2's text writer does: UTF-8, one blank of indentation a level.
/// That one leaves copies of what it wrote in memory that it frees; this one has a single buffer and zeroes it.
class XmlWriter {
public:
    enum class Declaration { With, Without };

    explicit XmlWriter(Declaration declaration = Declaration::With);
    ~XmlWriter();
    XmlWriter(const XmlWriter&) = delete;
    XmlWriter& operator=(const XmlWriter&) = delete;

    /// Names are not checked. They end at a NUL.
    void startElement(const std::string& name);
    void endElement();
    /// An element with a text, which is to be free of illegal characters. Without a name it is left out.
    void writeElement(const std::string& name, const std::string& text);
    /// Right behind startElement().
    void writeAttribute(const std::string& name, const std::string& text);
    /// Ends all that is open and gives the document, which is the caller's to wipe. Call once.
    std::string finish();

    /// Puts U+FFFD in the place of each character that XML 1.0 can't carry, NUL included: one of them would make the
    /// whole document unreadable. True when there was one.
    static bool replaceIllegalCharacters(std::string& utf8);

private:
    void append(std::string_view text);
    void appendEscaped(std::string_view text, std::string_view (*escape)(char));
    void appendIndentation();
    void makeRoom(std::size_t count);

    std::string document;
    std::vector<std::string> openElements;
    bool isInStartTag = false;
};

} // namespace ZelUnified
