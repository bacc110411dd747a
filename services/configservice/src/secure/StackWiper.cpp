#include "StackWiper.h"

#include <openssl/crypto.h>

#include <cstddef>
#include <cstring>

namespace zel {

namespace {

/// More than the parser and the ciphers need.
constexpr std::size_t depth = std::size_t{48} * 1024;

} // namespace

// On the real stack, in a frame of its own, under a sanitizer too.
[[gnu::noinline, gnu::no_sanitize_address]] void StackWiper::wipe() noexcept {
    unsigned char area[depth];
    OPENSSL_cleanse(area, depth);
    // Copies of several lengths go through the registers that others of these lengths went through.
    for (std::size_t length = 8; length <= depth / 2; length *= 2) {
        std::memcpy(area, area + depth / 2, length);
    }
    OPENSSL_cleanse(area, depth); // keeps the copies from being left out
}

} // namespace zel
