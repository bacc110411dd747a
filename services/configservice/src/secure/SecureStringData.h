#pragma once

#include <cstddef>
#include <memory>

namespace zel {

/// The content that copies of one SecureString share. Zeroes both buffers before it frees them.
struct SecureStringData {
    SecureStringData() = default;
    ~SecureStringData();
    SecureStringData(const SecureStringData&) = delete;
    SecureStringData& operator=(const SecureStringData&) = delete;

    void wipeIv();
    void wipeCipherText();

    bool empty = true; ///< True without usable content, also after the cipher failed.
    std::unique_ptr<unsigned char[]> iv;
    std::size_t ivLength = 0;
    std::unique_ptr<unsigned char[]> cipherText;
    /// Length of the ciphertext in bytes; the size of the whole buffer after a failure of the cipher.
    std::size_t cipherTextLength = 0;
};

} // namespace zel
