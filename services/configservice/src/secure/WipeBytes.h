#pragma once

#include <cstddef>
#include <cstring>

namespace zel {

/// Zeroes the bytes; `bytes` may be null if `count` is 0. The compiler cannot remove the call, because the pointer to
/// the function is volatile. OPENSSL_cleanse() does the same, but takes three to nine times as long.
inline void wipeBytes(void* bytes, std::size_t count) noexcept {
    static void* (*const volatile fill)(void*, int, std::size_t) = &std::memset;
    if (count != 0) {
        fill(bytes, 0, count);
    }
}

} // namespace zel
