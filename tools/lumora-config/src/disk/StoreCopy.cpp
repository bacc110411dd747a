#include "StoreCopy.h"

#include <kyr/FileUtils.h>

#include <ConfigKeys.h>

#include <string_view>

namespace lumora_config {

namespace {

/// Accepts the separators of every platform because platforms may share the folder.
bool hasParentComponent(std::string_view name) {
    constexpr std::string_view separators = "/\\";
    while (true) {
        const auto end = name.find_first_of(separators);
        if (name.substr(0, end) == "..") {
            return true;
        }
        if (end == std::string_view::npos) {
            return false;
        }
        name.remove_prefix(end + 1);
    }
}

} // namespace

std::optional<std::string> findPathOfCopy(const std::string& configDirectory, const std::string& storeName) {
    const auto fileName = "cached" + storeName + ".dat";
    if (hasParentComponent(storeName)) {
        return std::nullopt;
    }
    const auto separator = KyrCoreUtils::FileUtils::FileSeparator();
    return configDirectory + separator + std::string(ZelUnified::ConfigKeys::cacheDirectory) + separator + fileName;
}

} // namespace lumora_config
