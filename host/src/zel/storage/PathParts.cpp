#include "PathParts.h"

#include <filesystem>
#include <system_error>

namespace zel::storage {

namespace {

std::filesystem::path spellDirectory(const std::string& directory) {
    std::error_code failure;
    auto spelled = std::filesystem::weakly_canonical(
        std::filesystem::absolute(directory.empty() ? "." : directory, failure), failure);
    return failure ? std::filesystem::path(directory) : spelled;
}

} // namespace

PathParts splitPath(const std::string& path) {
    // Splits at both separators on a platform that has two.
    const std::string name = std::filesystem::path(path).filename().string();
    PathParts parts{path.substr(0, path.size() - name.size()), {}, name};
    parts.directory = parts.prefix;
    if (parts.directory.size() > 1) {
        parts.directory.pop_back();
    }
    return parts;
}

std::string spellPath(const std::string& path) {
    const PathParts parts = splitPath(path);
    return (spellDirectory(parts.directory) / parts.name).string();
}

std::string directoryPrefix(const std::string& directory) {
    // The trailing separator excludes directories whose names only start with the same text.
    return directory.empty() ? directory : (spellDirectory(directory) / "").string();
}

} // namespace zel::storage
