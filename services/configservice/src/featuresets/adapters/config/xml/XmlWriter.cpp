#include "XmlWriter.h"

#include "secure/SecureString.h"

#include <kyr/StringUtils.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <new>
#include <type_traits>
#include <utility>

namespace ZelUnified {

namespace {

const xmlChar* toXml(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

/// Cheap first test: most bytes cannot start an illegal character.
constexpr bool mayBeginIllegal(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0xEF;
}

/// Returns the length of the illegal character at `position` of valid UTF-8, or 0 if the character is legal.
std::size_t illegalLength(const std::string& text, std::size_t position) {
    const char first = text[position];
    if (!mayBeginIllegal(first) || first == '\t' || first == '\n' || first == '\r') {
        return 0;
    }
    if (static_cast<unsigned char>(first) < 0x20) {
        return 1;
    }
    const bool isNonCharacter =
        text.compare(position, 3, "\xEF\xBF\xBE") == 0 || text.compare(position, 3, "\xEF\xBF\xBF") == 0;
    return isNonCharacter ? 3 : 0;
}

constexpr std::string_view escapeInElement(char character) {
    switch (character) {
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '&':
        return "&amp;";
    case '"':
        return "&quot;";
    case '\r':
        return "&#13;";
    default:
        return {};
    }
}

constexpr std::string_view escapeInAttribute(char character) {
    switch (character) {
    case '\n':
        return "&#10;";
    case '\t':
        return "&#9;";
    default:
        return escapeInElement(character);
    }
}

constexpr std::size_t asciiCount = 0x80;
constexpr std::size_t longestCharacter = 4; ///< In bytes of UTF-8.

/// The ASCII characters that need no escape.
template <auto escape>
constexpr auto plainCharacters = [] {
    std::array<bool, asciiCount> plain{};
    for (std::size_t code = 0x20; code < asciiCount; ++code) {
        plain.at(code) = escape(static_cast<char>(code)).empty();
    }
    return plain;
}();

/// Grows `document` and zeroes the memory that it frees.
void makeRoom(std::string& document, std::size_t count) {
    const std::size_t needed = document.size() + count;
    if (needed <= document.capacity()) {
        return;
    }
    std::string larger;
    larger.reserve(std::max(needed, 2 * document.capacity()));
    larger.append(document);
    zel::SecureString::wipe(document);
    document.swap(larger);
}

/// Appends all pieces, which are ASCII or UTF-8.
template <class... Pieces>
void appendTo(std::string& document, const Pieces&... pieces) {
    makeRoom(document, (pieces.size() + ...));
    (document.append(pieces), ...);
}

/// wchar_t may be signed.
constexpr auto toCode(wchar_t unit) {
    return static_cast<std::make_unsigned_t<wchar_t>>(unit);
}

/// Appends `text` up to its first character that is not plain. Returns the number of characters appended.
template <auto escape>
std::size_t appendPlain(std::string& document, std::wstring_view text) {
    const std::size_t length = document.size();
    makeRoom(document, text.size());
    document.resize(length + text.size());
    char* const appended = document.data() + length;
    std::size_t count = 0;
    for (const wchar_t unit : text) {
        const auto code = toCode(unit);
        if (code >= asciiCount || !plainCharacters<escape>[code]) {
            break;
        }
        appended[count++] = static_cast<char>(code);
    }
    document.resize(length + count);
    return count;
}

template <auto escape>
void appendEscaped(std::string& document, std::string_view text) {
    const auto isSpecial = [](char character) { return !escape(character).empty(); };
    while (!text.empty()) {
        const auto plain = static_cast<std::size_t>(std::find_if(text.begin(), text.end(), isSpecial) - text.begin());
        appendTo(document, text.substr(0, plain));
        text.remove_prefix(plain);
        if (!text.empty()) {
            appendTo(document, escape(text.front()));
            text.remove_prefix(1);
        }
    }
}

/// Appends an attribute's text in ASCII, with references for all other characters, as the library does without a
/// declared encoding.
void appendEscapedInAscii(std::string& document, std::string_view utf8) {
    const auto isAscii = [](char character) { return static_cast<unsigned char>(character) < asciiCount; };
    while (!utf8.empty()) {
        const auto ascii = static_cast<std::size_t>(std::find_if_not(utf8.begin(), utf8.end(), isAscii) - utf8.begin());
        appendEscaped<escapeInAttribute>(document, utf8.substr(0, ascii));
        utf8.remove_prefix(ascii);
        int length = static_cast<int>(std::min(utf8.size(), longestCharacter));
        const int code = utf8.empty() ? -1 : xmlGetUTF8Char(reinterpret_cast<const xmlChar*>(utf8.data()), &length);
        if (code < 0) {
            return;
        }
        std::array<char, sizeof("&#xFFFFFFFF;")> reference{}; // room for any unsigned, so that g++ does not warn
        std::snprintf(reference.data(), reference.size(), "&#x%X;", static_cast<unsigned>(code));
        appendTo(document, std::string_view(reference.data()));
        utf8.remove_prefix(static_cast<std::size_t>(length));
    }
}

using Append = void (*)(std::string& document, std::string_view utf8);

/// Appends `text`, through `appendRest` from the first character that is not plain. Returns false if a character was
/// replaced.
template <auto escape>
bool appendText(std::string& document, std::wstring_view text, Append appendRest = &appendEscaped<escape>) {
    text.remove_prefix(appendPlain<escape>(document, text));
    if (text.empty()) {
        return true;
    }
    std::string narrow = KyrCoreUtils::toString(text);
    const bool isWhole = !XmlWriter::replaceIllegalCharacters(narrow);
    appendRest(document, narrow);
    zel::SecureString::wipe(narrow);
    return isWhole;
}

/// Write callback of the library. Throws nothing, because no exception may pass through the library.
int append(void* document, const char* bytes, int count) noexcept {
    try {
        appendTo(*static_cast<std::string*>(document), std::string_view(bytes, static_cast<std::size_t>(count)));
    } catch (const std::bad_alloc&) {
        return -1;
    }
    return count;
}

} // namespace

XmlWriter::XmlWriter(Declaration declaration) : attributesAreAscii(declaration == Declaration::Without) {
    output = xmlOutputBufferCreateIO(&append, nullptr, &document, nullptr);
    writer.reset(output == nullptr ? nullptr : xmlNewTextWriter(output));
    if (!writer) {
        xmlOutputBufferClose(output);
        failed = true;
        return;
    }
    xmlTextWriterSetIndent(writer.get(), 1);
    if (declaration == Declaration::With) {
        recordResult(xmlTextWriterStartDocument(writer.get(), nullptr, "utf-8", nullptr));
        recordResult(xmlTextWriterFlush(writer.get()));
        // Everything that follows is already UTF-8; a conversion would make another copy of it.
        xmlCharEncCloseFunc(std::exchange(output->encoder, nullptr));
    }
}

XmlWriter::~XmlWriter() {
    writer.reset();
    zel::SecureString::wipe(document);
}

void XmlWriter::startElement(const std::string& name) {
    recordResult(xmlTextWriterStartElement(writer.get(), toXml(name.c_str())));
    isStartTagOpen = true;
}

void XmlWriter::endElement() {
    isStartTagOpen = false;
    recordResult(xmlTextWriterEndElement(writer.get()));
}

bool XmlWriter::writeElement(const std::string& name, std::wstring_view text) {
    if (*name.c_str() == '\0') { // c_str(): the library reads a name up to its first NUL
        return true;
    }
    startElement(name);
    recordResult(xmlTextWriterWriteRawLen(writer.get(), toXml(""), 0)); // ends the start tag
    const bool isWhole = !flush() || appendText<escapeInElement>(document, text);
    endElement();
    return isWhole;
}

/// Works because the library keeps the start tag open until the next element starts or this one ends.
bool XmlWriter::writeAttribute(const std::string& name, std::wstring_view text) {
    return !flush() || appendAttribute(name, text);
}

bool XmlWriter::writeEmptyElement(std::string_view name, std::initializer_list<Attribute> attributes) {
    if (std::exchange(isStartTagOpen, false)) {
        recordResult(xmlTextWriterWriteRawLen(writer.get(), toXml("\n"), 1)); // ends the start tag first
        flush();
    }
    if (failed) {
        return true;
    }
    appendTo(document, std::string_view(" <"), name);
    bool areWhole = true;
    for (const auto& attribute : attributes) {
        areWhole = appendAttribute(attribute.name, attribute.text) && areWhole;
    }
    appendTo(document, std::string_view("/>\n"));
    return areWhole;
}

bool XmlWriter::appendAttribute(std::string_view name, std::wstring_view text) {
    appendTo(document, std::string_view(" "), name, std::string_view("=\""));
    const bool isWhole = appendText<escapeInAttribute>(
        document, text, attributesAreAscii ? &appendEscapedInAscii : &appendEscaped<escapeInAttribute>);
    appendTo(document, std::string_view("\""));
    return isWhole;
}

std::string XmlWriter::finish() {
    recordResult(xmlTextWriterEndDocument(writer.get()));
    recordResult(xmlTextWriterFlush(writer.get()));
    return failed ? std::string() : std::move(document);
}

bool XmlWriter::flush() {
    recordResult(xmlTextWriterFlush(writer.get()));
    return !failed;
}

bool XmlWriter::replaceIllegalCharacters(std::string& utf8) {
    std::size_t position = 0;
    while (position < utf8.size() && (!mayBeginIllegal(utf8[position]) || illegalLength(utf8, position) == 0)) {
        ++position;
    }
    if (position == utf8.size()) {
        return false;
    }
    std::string legal;
    legal.reserve(utf8.size() * 3);
    legal.assign(utf8, 0, position);
    while (position < utf8.size()) {
        if (const std::size_t length = illegalLength(utf8, position); length > 0) {
            legal += "\xEF\xBF\xBD";
            position += length;
        } else {
            legal += utf8[position++];
        }
    }
    zel::SecureString::wipe(utf8);
    utf8 = std::move(legal);
    return true;
}

} // namespace ZelUnified
