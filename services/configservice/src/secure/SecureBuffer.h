#pragma once

#include <cstdint>
#include <memory>

namespace zel {

/// The clear bytes of a secret, zeroed before they are freed.
class SecureBuffer {
public:
    SecureBuffer();
    ~SecureBuffer();
    SecureBuffer(const SecureBuffer&) = delete;
    SecureBuffer& operator=(const SecureBuffer&) = delete;

    /// The bytes, followed by a zero; an empty text when there are none.
    const char* getData() const;
    /// The number of bytes without the final zero.
    std::uint32_t getLength() const;
    /// Zeroes and frees what it held and takes the new bytes.
    void set(std::unique_ptr<char[]> bytes, std::uint32_t length);

private:
    struct Content;
    std::unique_ptr<Content> content;
};

} // namespace zel
