#pragma once

#include <array>
#include <cstddef>

namespace zel {

/// The fixed key of all secure strings. The constructor computes it, the destructor zeroes it. It hides secrets in a
/// memory dump, but not from somebody who has the code.
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
