#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace KyrCoreUtils {

/// Converts UTF-8 text to a path. The constructors of paths expect narrow text in another encoding on some platforms.
inline std::filesystem::path toPath(std::string_view text) {
    return std::u8string(text.begin(), text.end());
}

} // namespace KyrCoreUtils
