#include "XmlWriter.h"

#include "secure/SecureString.h"

#include <algorithm>
#include <new>
#include <utility>

namespace ZelUnified {

namespace {

const xmlChar* toXml(const char* text) {
    return reinterpret_cast<const xmlChar*>(text);
}

/// What most characters are told apart from illegal ones by.
constexpr bool mayBeginIllegal(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return byte < 0x20 || byte == 0xEF;
}

/// The length of an illegal character at `position` of valid UTF-8, or 0.
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

/// Grows without leaving what was written in the memory given back.
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

/// For the library, which no exception may pass through.
int append(void* document, const char* bytes, int count) noexcept {
    auto& text = *static_cast<std::string*>(document);
    const auto length = static_cast<std::size_t>(count);
    try {
        makeRoom(text, length);
    } catch (const std::bad_alloc&) {
        return -1;
    }
    text.append(bytes, length);
    return count;
}

} // namespace

XmlWriter::XmlWriter(Declaration declaration) {
    output = xmlOutputBufferCreateIO(&append, nullptr, &document, nullptr);
    writer.reset(output == nullptr ? nullptr : xmlNewTextWriter(output));
    if (!writer) {
        xmlOutputBufferClose(output);
        failed = true;
        return;
    }
    xmlTextWriterSetIndent(writer.get(), 1);
    if (declaration == Declaration::With) {
        note(xmlTextWriterStartDocument(writer.get(), nullptr, "utf-8", nullptr));
        note(xmlTextWriterFlush(writer.get()));
        // All that follows is UTF-8 already; the conversion would make another copy of it.
        xmlCharEncCloseFunc(std::exchange(output->encoder, nullptr));
    }
}

XmlWriter::~XmlWriter() {
    writer.reset();
    zel::SecureString::wipe(document);
}

void XmlWriter::startElement(const std::string& name) {
    note(xmlTextWriterStartElement(writer.get(), toXml(name.c_str())));
}

void XmlWriter::endElement() {
    note(xmlTextWriterEndElement(writer.get()));
}

void XmlWriter::writeElement(const std::string& name, const std::string& text) {
    if (name.empty()) {
        return;
    }
    startElement(name);
    writeEscaped<escapeInElement>(text);
    endElement();
}

void XmlWriter::writeAttribute(const std::string& name, const std::string& text) {
    note(xmlTextWriterStartAttribute(writer.get(), toXml(name.c_str())));
    writeEscaped<escapeInAttribute>(text);
    note(xmlTextWriterEndAttribute(writer.get()));
}

std::string XmlWriter::finish() {
    note(xmlTextWriterEndDocument(writer.get()));
    note(xmlTextWriterFlush(writer.get()));
    return failed ? std::string() : std::move(document);
}

/// Past the library, which would leave copies in memory that it frees or moves away from: it gets an empty text, and
/// its markup goes first.
template <XmlWriter::Escape escape>
void XmlWriter::writeEscaped(std::string_view text) {
    note(xmlTextWriterWriteRawLen(writer.get(), toXml(""), 0));
    note(xmlTextWriterFlush(writer.get()));
    if (failed) {
        return;
    }
    makeRoom(document, text.size());
    for (const char character : text) {
        const std::string_view escaped = escape(character);
        makeRoom(document, std::max<std::size_t>(escaped.size(), 1));
        if (escaped.empty()) {
            document += character;
        } else {
            document += escaped;
        }
    }
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
