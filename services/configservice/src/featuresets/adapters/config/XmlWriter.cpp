#include "XmlWriter.h"

#include "XmlGuard.h"

#include <openssl/crypto.h>
#include <secure/SecureString.h>

#include <algorithm>
#include <array>
#include <utility>

namespace ZelUnified {

namespace {

const xmlChar* toXml(const std::string& text) {
    return reinterpret_cast<const xmlChar*>(text.c_str());
}

/// The length of an illegal character at `position` of valid UTF-8, or 0.
std::size_t illegalLength(const std::string& text, std::size_t position) {
    const auto byte = static_cast<unsigned char>(text[position]);
    if (byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r') {
        return 1;
    }
    const bool isNonCharacter =
        text.compare(position, 3, "\xEF\xBF\xBE") == 0 || text.compare(position, 3, "\xEF\xBF\xBF") == 0;
    return isNonCharacter ? 3 : 0;
}

std::string_view escapeInElement(char character) {
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

std::string_view escapeInAttribute(char character) {
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

int append(void* document, const char* bytes, int count) {
    auto& text = *static_cast<std::string*>(document);
    const auto length = static_cast<std::size_t>(count);
    makeRoom(text, length);
    text.append(bytes, length);
    return count;
}

} // namespace

XmlWriter::XmlWriter(Declaration declaration) {
    const XmlGuard guard;
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
    }
}

XmlWriter::~XmlWriter() {
    writer.reset();
    zel::SecureString::wipe(document);
}

void XmlWriter::startElement(const std::string& name) {
    note(xmlTextWriterStartElement(writer.get(), toXml(name)));
}

void XmlWriter::endElement() {
    note(xmlTextWriterEndElement(writer.get()));
}

void XmlWriter::writeElement(const std::string& name, const std::string& text) {
    if (name.empty()) {
        return;
    }
    const XmlGuard guard;
    startElement(name);
    writeEscaped(text, &escapeInElement);
    endElement();
}

void XmlWriter::writeAttribute(const std::string& name, const std::string& text) {
    const XmlGuard guard;
    note(xmlTextWriterStartAttribute(writer.get(), toXml(name)));
    writeEscaped(text, &escapeInAttribute);
    note(xmlTextWriterEndAttribute(writer.get()));
}

std::string XmlWriter::finish() {
    const XmlGuard guard;
    note(xmlTextWriterEndDocument(writer.get()));
    note(xmlTextWriterFlush(writer.get()));
    return failed ? std::string() : std::move(document);
}

/// Escaped here, since the library would leave its escaped copy in memory that it frees.
void XmlWriter::writeEscaped(std::string_view text, Escape escape) {
    constexpr std::size_t longestEscape = 6;
    std::array<char, 512> piece{};
    std::size_t length = 0;
    for (const char& character : text) {
        std::string_view shown = escape(character);
        if (shown.empty()) {
            shown = {&character, 1};
        }
        length += shown.copy(piece.data() + length, shown.size());
        if (length + longestEscape > piece.size()) {
            writePiece({piece.data(), length});
            length = 0;
        }
    }
    writePiece({piece.data(), length});
    OPENSSL_cleanse(piece.data(), piece.size());
}

/// Small enough never to make the library's own buffers grow, which would leave the smaller ones as they were. One of
/// them is for the conversion to UTF-8, which changes nothing.
void XmlWriter::writePiece(std::string_view piece) {
    if (failed) {
        return;
    }
    note(xmlTextWriterWriteRawLen(writer.get(), reinterpret_cast<const xmlChar*>(piece.data()),
                                  static_cast<int>(piece.size())));
    xmlChar* const buffered = xmlBufContent(output->buffer);
    xmlChar* const converted = output->conv == nullptr ? nullptr : xmlBufContent(output->conv);
    const std::size_t length = xmlBufUse(output->buffer);
    note(xmlTextWriterFlush(writer.get()));
    for (xmlChar* copy : {buffered, converted}) {
        if (copy != nullptr) {
            OPENSSL_cleanse(copy, length);
        }
    }
}

bool XmlWriter::replaceIllegalCharacters(std::string& utf8) {
    std::size_t position = 0;
    while (position < utf8.size() && illegalLength(utf8, position) == 0) {
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
