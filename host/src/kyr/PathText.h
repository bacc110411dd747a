#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace KyrCoreUtils {

/// The path that UTF-8 text names; nothing for the empty text and for text that the system would cut at a NUL.
std::optional<std::filesystem::path> pathFromText(const std::string& text);

std::string textFromPath(const std::filesystem::path& path);

} // namespace KyrCoreUtils
