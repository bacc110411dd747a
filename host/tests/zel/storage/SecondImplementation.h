#pragma once

#include <zel/KeyProvider.h>

#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <string>

namespace testing_host {

/// A second implementation of the file format, written from its description with other calls of the library, so that an
/// error in both the product's writer and reader is detected. It also encrypts the empty text.
inline std::string hmacSha256(const std::string& key, const std::string& text) {
    std::string result(32, '\0');
    unsigned int length = 0;
    HMAC(EVP_sha256(), key.data(), static_cast<int>(key.size()), reinterpret_cast<const unsigned char*>(text.data()),
         text.size(), reinterpret_cast<unsigned char*>(result.data()), &length);
    return result;
}

inline std::string hkdfSha256(const zel::storage::MasterKey& key, const std::string& salt, const std::string& purpose) {
    const std::string secret(reinterpret_cast<const char*>(key.data()), zel::storage::MasterKey::length);
    return hmacSha256(hmacSha256(salt.empty() ? std::string(32, '\0') : salt, secret), purpose + '\x01');
}

inline std::string sealByDescription(const std::string& clear, char category, const zel::storage::MasterKey& key) {
    const std::string salt = "sixteen of salt!";
    const std::string nonce = "twelve bytes";
    std::string file = std::string("LUMS\x01") + category + std::string(2, '\0');
    file += hkdfSha256(key, "", "lumora-key-id").substr(0, 8) + salt + nonce;
    const std::string fileKey = hkdfSha256(key, salt, std::string("lumora-file\x01") + category);

    const auto bytes = [](std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); };
    std::string header = file;
    std::string secret = fileKey;
    std::string iv = nonce;
    std::string text = clear;
    std::string ciphertext(clear.size(), '\0');
    std::string tag(16, '\0');
    int count = 0;
    EVP_CIPHER_CTX* const context = EVP_CIPHER_CTX_new();
    EVP_CipherInit_ex(context, EVP_aes_256_gcm(), nullptr, bytes(secret), bytes(iv), 1);
    EVP_CipherUpdate(context, nullptr, &count, bytes(header), static_cast<int>(header.size()));
    if (!clear.empty()) {
        EVP_CipherUpdate(context, bytes(ciphertext), &count, bytes(text), static_cast<int>(text.size()));
    }
    EVP_CipherFinal_ex(context, bytes(tag), &count);
    EVP_CIPHER_CTX_ctrl(context, EVP_CTRL_AEAD_GET_TAG, 16, tag.data());
    EVP_CIPHER_CTX_free(context);
    return file + ciphertext + tag;
}

} // namespace testing_host
