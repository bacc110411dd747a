#pragma once

namespace zel {

/// At the end of a scope, zeroes the stack that the functions called in it used, and the vector registers that copying
/// and deciphering leave pieces of secrets in: the loader saves them on the stack whenever a library's function is
/// bound at its first call. Declare it before all else in the outermost function that handles a secret in the clear.
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
