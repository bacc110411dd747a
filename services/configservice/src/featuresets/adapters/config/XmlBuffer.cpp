#include "XmlBuffer.h"

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
    xmlBuffer* buffer = xmlBufferCreate();
    return buffer == nullptr ? nullptr : XmlBuffer(buffer, &wipeAndFree);
}

} // namespace ZelUnified
