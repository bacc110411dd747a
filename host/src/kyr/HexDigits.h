#pragma once

#include <string>
#include <string_view>

namespace KyrCoreUtils {

/// Appends the two digits of a byte, in lower case.
inline void appendHex(std::string& text, unsigned char byte) {
    constexpr std::string_view digits = "0123456789abcdef";
    text += digits[byte >> 4U];
    text += digits[byte & 0xFU];
}

} // namespace KyrCoreUtils
