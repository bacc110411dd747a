#include "XmlWriter.h"

#include <openssl/crypto.h>
#include <secure/SecureString.h>

#include <algorithm>

namespace ZelUnified {

namespace {

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

/// What stands for `character` in a text; empty for itself.
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

} // namespace

XmlWriter::XmlWriter(Declaration declaration) {
    if (declaration == Declaration::With) {
        append("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n");
    }
}

XmlWriter::~XmlWriter() {
    OPENSSL_cleanse(document.data(), document.size());
}

void XmlWriter::startElement(const std::string& name) {
    if (isInStartTag) {
        append(">\n");
    }
    appendIndentation();
    openElements.emplace_back(name.c_str());
    append("<");
    append(openElements.back());
    isInStartTag = true;
}

void XmlWriter::endElement() {
    const std::string name = std::move(openElements.back());
    openElements.pop_back();
    if (isInStartTag) {
        append("/>\n");
    } else {
        appendIndentation();
        append("</");
        append(name);
        append(">\n");
    }
    isInStartTag = false;
}

void XmlWriter::writeElement(const std::string& name, const std::string& text) {
    if (name.c_str()[0] == '\0') {
        return;
    }
    startElement(name);
    append(">");
    appendEscaped(text, escapeInElement);
    append("</");
    append(openElements.back());
    append(">\n");
    openElements.pop_back();
    isInStartTag = false;
}

void XmlWriter::writeAttribute(const std::string& name, const std::string& text) {
    append(" ");
    append(name.c_str());
    append("=\"");
    appendEscaped(text, escapeInAttribute);
    append("\"");
}

std::string XmlWriter::finish() {
    while (!openElements.empty()) {
        endElement();
    }
    return std::move(document);
}

void XmlWriter::appendEscaped(std::string_view text, std::string_view (*escape)(char)) {
    std::size_t begin = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (const std::string_view escaped = escape(text[i]); !escaped.empty()) {
            append(text.substr(begin, i - begin));
            append(escaped);
            begin = i + 1;
        }
    }
    append(text.substr(begin));
}

void XmlWriter::appendIndentation() {
    makeRoom(openElements.size());
    document.append(openElements.size(), ' ');
}

void XmlWriter::append(std::string_view text) {
    makeRoom(text.size());
    document.append(text);
}

/// Grows without leaving what was written in the memory given back.
void XmlWriter::makeRoom(std::size_t count) {
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
