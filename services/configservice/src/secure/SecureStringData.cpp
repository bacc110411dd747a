#include "SecureStringData.h"

#include <openssl/crypto.h>

namespace zel {

SecureStringData::~SecureStringData() {
    wipeIv();
    wipeCipherText();
}

void SecureStringData::wipeIv() {
    OPENSSL_cleanse(iv.get(), ivLength);
    iv.reset();
    ivLength = 0;
}

void SecureStringData::wipeCipherText() {
    OPENSSL_cleanse(cipherText.get(), cipherTextLength);
    cipherText.reset();
    cipherTextLength = 0;
}

} // namespace zel
