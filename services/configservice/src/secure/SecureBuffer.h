#pragma once

#include <cstdint>
#include <memory>

namespace zel {

/// Owns the clear bytes of a secret and zeroes them before it frees them.
class SecureBuffer {
public:
    SecureBuffer();
    ~SecureBuffer();
    SecureBuffer(const SecureBuffer&) = delete;
    SecureBuffer& operator=(const SecureBuffer&) = delete;

    /// Returns the bytes, followed by a zero; an empty text if there are none.
    const char* getData() const;
    /// Returns the number of bytes without the final zero.
    std::uint32_t getLength() const;
    /// Zeroes and frees the old bytes and copies the new ones.
    void set(std::unique_ptr<char[]> bytes, std::uint32_t length);

private:
    struct Content;
    std::unique_ptr<Content> content;
};

} // namespace zel
