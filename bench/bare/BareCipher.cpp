#include "BareCipher.h"

#include "RowSuite.h"

namespace bench {

namespace {

unsigned char* to(std::string& text) {
    return reinterpret_cast<unsigned char*>(text.data());
}

const unsigned char* from(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

} // namespace

void BareCipher::encipher(const std::string& clear) {
    int count = 0;
    cipherText.resize(clear.size());
    require(EVP_EncryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, key.data(), nonce.data()) == 1 &&
                EVP_EncryptUpdate(context.get(), to(cipherText), &count, from(clear), static_cast<int>(clear.size())) ==
                    1 &&
                EVP_EncryptFinal_ex(context.get(), to(cipherText), &count) == 1 &&
                EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_GET_TAG, static_cast<int>(tag.size()), tag.data()) ==
                    1,
            "the bare encryption");
}

void BareCipher::decipher(std::string& clear) {
    int count = 0;
    clear.resize(cipherText.size());
    require(EVP_DecryptInit_ex(context.get(), EVP_aes_256_gcm(), nullptr, key.data(), nonce.data()) == 1 &&
                EVP_DecryptUpdate(context.get(), to(clear), &count, from(cipherText),
                                  static_cast<int>(cipherText.size())) == 1 &&
                EVP_CIPHER_CTX_ctrl(context.get(), EVP_CTRL_AEAD_SET_TAG, static_cast<int>(tag.size()), tag.data()) ==
                    1 &&
                EVP_DecryptFinal_ex(context.get(), to(clear), &count) == 1,
            "the bare decryption");
}

} // namespace bench
