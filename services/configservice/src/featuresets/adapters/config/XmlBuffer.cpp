#include "XmlBuffer.h"

#include "XmlLibrary.h"

#include <openssl/crypto.h>

namespace ZelUnified {

namespace {

void wipeAndFree(xmlBuffer* buffer) {
    if (buffer->content != nullptr) {
        OPENSSL_cleanse(buffer->content, buffer->size);
    }
    xmlBufferFree(buffer);
}

} // namespace

XmlBuffer makeXmlBuffer() {
    const XmlLibrary library;
    xmlBuffer* buffer = xmlBufferCreate();
    return buffer == nullptr ? nullptr : XmlBuffer(buffer, &wipeAndFree);
}

} // namespace ZelUnified
