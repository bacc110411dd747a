#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace KyrCoreUtils {

/// Converts UTF-8 text to a path. The constructors of paths expect narrow text in another encoding on some platforms.
inline std::filesystem::path toPath(std::string_view text) {
    return std::u8string(text.begin(), text.end());
}

/// Converts a path to UTF-8 text with its own separators. path::string() gives text in another encoding on some
/// platforms.
inline std::string toText(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

/// The same with "/" as the separator on every platform.
inline std::string toGenericText(const std::filesystem::path& path) {
    const std::u8string text = path.generic_u8string();
    return {text.begin(), text.end()};
}

} // namespace KyrCoreUtils
