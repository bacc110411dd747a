#include "WipedBytes.h"

#include <openssl/crypto.h>

namespace zel::storage {

WipedBytes::~WipedBytes() {
    OPENSSL_cleanse(bytes.data(), bytes.size());
}

WipedText::~WipedText() {
    text.resize(text.capacity());
    OPENSSL_cleanse(text.data(), text.size());
}

} // namespace zel::storage
