#include "StackWiper.h"

#include <openssl/crypto.h>

#include <cstddef>
#include <cstring>

namespace zel {

namespace {

/// In bytes; more than the parser and the ciphers use.
constexpr std::size_t depth = std::size_t{48} * 1024;

} // namespace

// Must be on the real stack and in its own frame, also in a sanitizer build.
[[gnu::noinline, gnu::no_sanitize_address]] void StackWiper::wipe() noexcept {
    unsigned char area[depth];
    OPENSSL_cleanse(area, depth);
    // Copying these lengths overwrites the vector registers that earlier copies of the same lengths used.
    for (std::size_t length = 8; length <= depth / 2; length *= 2) {
        std::memcpy(area, area + depth / 2, length);
    }
    OPENSSL_cleanse(area, depth); // keeps the compiler from removing the copies
}

} // namespace zel
