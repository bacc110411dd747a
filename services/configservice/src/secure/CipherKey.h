#pragma once

#include <array>
#include <cstddef>

namespace zel {

/// The fixed key of all secure strings, put together for the span of one call and zeroed at its end. It hides secrets
/// from a memory dump, not from somebody who has the code.
class CipherKey {
public:
    static constexpr std::size_t length = 32;

    CipherKey();
    ~CipherKey();
    CipherKey(const CipherKey&) = delete;
    CipherKey& operator=(const CipherKey&) = delete;

    const unsigned char* data() const { return bytes.data(); }

private:
    std::array<unsigned char, length> bytes;
};

} // namespace zel
