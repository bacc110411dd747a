#include "PathParts.h"

#include <filesystem>

namespace zel::storage {

PathParts splitPath(const std::string& path) {
    // Both separators where the platform knows two.
    const std::string name = std::filesystem::path(path).filename().string();
    PathParts parts{path.substr(0, path.size() - name.size()), {}, name};
    parts.directory = parts.prefix;
    if (parts.directory.size() > 1) {
        parts.directory.pop_back();
    }
    return parts;
}

} // namespace zel::storage
