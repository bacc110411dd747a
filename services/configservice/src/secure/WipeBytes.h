#pragma once

#include <openssl/crypto.h>

#include <cstddef>

namespace zel {

/// Zeroes the bytes; `bytes` may be null if `count` is 0. The compiler cannot remove the call. Not memset, which is
/// faster: in a build with AddressSanitizer, secrets then remained on the stack.
inline void wipeBytes(void* bytes, std::size_t count) noexcept {
    if (count != 0) {
        OPENSSL_cleanse(bytes, count);
    }
}

} // namespace zel
