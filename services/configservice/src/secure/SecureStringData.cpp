#include "SecureStringData.h"

#include "WipeBytes.h"

namespace zel {

SecureStringData::~SecureStringData() {
    wipeIv();
    wipeCipherText();
}

void SecureStringData::wipeIv() {
    wipeBytes(iv.get(), ivLength);
    iv.reset();
    ivLength = 0;
}

void SecureStringData::wipeCipherText() {
    wipeBytes(cipherText.get(), cipherTextLength);
    cipherText.reset();
    cipherTextLength = 0;
}

} // namespace zel
