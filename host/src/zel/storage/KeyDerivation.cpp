#include "KeyDerivation.h"

#include <openssl/core_names.h>
#include <openssl/kdf.h>
#include <openssl/params.h>

#include <memory>
#include <string>

namespace zel::storage {

namespace {

using Kdf = std::unique_ptr<EVP_KDF, decltype(&EVP_KDF_free)>;
using KdfContext = std::unique_ptr<EVP_KDF_CTX, decltype(&EVP_KDF_CTX_free)>;

// The parameters of the library are not const, although it only reads them.
OSSL_PARAM octets(const char* name, const void* bytes, std::size_t length) {
    return OSSL_PARAM_construct_octet_string(name, const_cast<void*>(bytes), length);
}

} // namespace

bool deriveKey(const MasterKey& key, std::span<const unsigned char> salt, std::string_view purpose,
               std::span<unsigned char> derived) {
    const Kdf kdf(EVP_KDF_fetch(nullptr, "HKDF", nullptr), &EVP_KDF_free);
    const KdfContext context(kdf ? EVP_KDF_CTX_new(kdf.get()) : nullptr, &EVP_KDF_CTX_free);
    if (!context) {
        return false;
    }
    std::string digest = "SHA256";
    const OSSL_PARAM parameters[] = {
        OSSL_PARAM_construct_utf8_string(OSSL_KDF_PARAM_DIGEST, digest.data(), 0),
        octets(OSSL_KDF_PARAM_KEY, key.data(), MasterKey::length),
        octets(OSSL_KDF_PARAM_INFO, purpose.data(), purpose.size()),
        salt.empty() ? OSSL_PARAM_construct_end() : octets(OSSL_KDF_PARAM_SALT, salt.data(), salt.size()),
        OSSL_PARAM_construct_end(),
    };
    return EVP_KDF_derive(context.get(), derived.data(), derived.size(), parameters) == 1;
}

bool deriveKeyId(const MasterKey& key, KeyId& id) {
    return deriveKey(key, {}, "lumora-key-id", id);
}

} // namespace zel::storage
