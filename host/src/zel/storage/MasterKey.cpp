#include <zel/KeyProvider.h>

#include <openssl/crypto.h>

namespace zel::storage {

MasterKey::~MasterKey() {
    OPENSSL_cleanse(bytes.data(), bytes.size());
}

} // namespace zel::storage
