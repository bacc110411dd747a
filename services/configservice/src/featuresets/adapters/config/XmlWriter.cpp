#include "XmlWriter.h"

#include "XmlGuard.h"

#include <openssl/crypto.h>
#include <secure/SecureString.h>

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

} // namespace

XmlWriter::XmlWriter(Declaration declaration) : buffer(makeXmlBuffer()) {
    if (!buffer) {
        return;
    }
    const XmlGuard guard;
    writer.reset(xmlNewTextWriterMemory(buffer.get(), 0));
    if (!writer) {
        return;
    }
    xmlTextWriterSetIndent(writer.get(), 1);
    if (declaration == Declaration::With) {
        note(xmlTextWriterStartDocument(writer.get(), nullptr, "utf-8", nullptr));
    }
}

XmlWriter::~XmlWriter() = default;

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
    note(xmlTextWriterWriteElement(writer.get(), toXml(name), toXml(text)));
}

void XmlWriter::writeAttribute(const std::string& name, const std::string& text) {
    const XmlGuard guard;
    note(xmlTextWriterWriteAttribute(writer.get(), toXml(name), toXml(text)));
}

std::string XmlWriter::finish() {
    const XmlGuard guard;
    note(xmlTextWriterEndDocument(writer.get()));
    note(xmlTextWriterFlush(writer.get()));
    if (failed) {
        return {};
    }
    const auto length = static_cast<std::size_t>(xmlBufferLength(buffer.get()));
    return {reinterpret_cast<const char*>(xmlBufferContent(buffer.get())), length};
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
