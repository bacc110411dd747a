#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace KyrCoreUtils {

/// Converts UTF-8 text to a path. Returns nullopt for empty text and for text with a NUL, at which the system would
/// truncate it.
std::optional<std::filesystem::path> pathFromText(const std::string& text);

std::string textFromPath(const std::filesystem::path& path);

} // namespace KyrCoreUtils
