#include "PathText.h"

namespace KyrCoreUtils {

std::optional<std::filesystem::path> pathFromText(const std::string& text) {
    if (text.empty() || text.find('\0') != std::string::npos) {
        return std::nullopt;
    }
    return std::filesystem::path(std::u8string(text.begin(), text.end()));
}

std::string textFromPath(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

} // namespace KyrCoreUtils
