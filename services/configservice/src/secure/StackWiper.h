#pragma once

namespace zel {

/// Zeroes, at the end of a scope, the stack that the called functions used and the vector registers. Copying and
/// deciphering leave parts of secrets in these registers, and the loader saves them on the stack when it binds a
/// library function at its first call. Declare it first in the outermost function that handles a secret in the clear.
class StackWiper {
public:
    StackWiper() = default;
    ~StackWiper() { wipe(); }
    StackWiper(const StackWiper&) = delete;
    StackWiper& operator=(const StackWiper&) = delete;

private:
    static void wipe() noexcept;
};

} // namespace zel
