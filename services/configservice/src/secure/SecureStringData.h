#pragma once

#include <cstddef>
#include <memory>

namespace zel {

/// What the copies of one SecureString share. Zeroes both buffers before they are freed.
struct SecureStringData {
    SecureStringData() = default;
    ~SecureStringData();
    SecureStringData(const SecureStringData&) = delete;
    SecureStringData& operator=(const SecureStringData&) = delete;

    void wipeIv();
    void wipeCipherText();

    bool empty = true; ///< No usable content; also set when enciphering failed.
    std::unique_ptr<unsigned char[]> iv;
    std::size_t ivLength = 0;
    std::unique_ptr<unsigned char[]> cipherText;
    /// Bytes of the ciphertext. The buffer's whole size after a failure of the cipher.
    std::size_t cipherTextLength = 0;
};

} // namespace zel
