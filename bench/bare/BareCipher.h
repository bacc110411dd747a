#pragma once

#include <openssl/evp.h>

#include <array>
#include <memory>
#include <string>

namespace bench {

/// Encrypts and decrypts with AES-256-GCM of the library and does nothing else.
class BareCipher {
public:
    /// Replaces the ciphertext by that of a text of any length.
    void encipher(const std::string& clear);
    void decipher(std::string& clear);

    const std::string& getCipherText() const { return cipherText; }

private:
    using Context = std::unique_ptr<EVP_CIPHER_CTX, decltype(&EVP_CIPHER_CTX_free)>;

    Context context{EVP_CIPHER_CTX_new(), &EVP_CIPHER_CTX_free};
    std::array<unsigned char, 32> key{};
    std::array<unsigned char, 12> nonce{};
    std::array<unsigned char, 16> tag{};
    std::string cipherText;
};

} // namespace bench
