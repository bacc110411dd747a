#include "PathParts.h"

#include <kyr/Paths.h>

#include <filesystem>
#include <system_error>

namespace zel::storage {

namespace {

using KyrCoreUtils::toPath;
using KyrCoreUtils::toText;

std::filesystem::path spellDirectory(const std::string& directory) {
    std::error_code failure;
    auto spelled = std::filesystem::weakly_canonical(
        std::filesystem::absolute(toPath(directory.empty() ? "." : directory), failure), failure);
    return failure ? toPath(directory) : spelled;
}

} // namespace

PathParts splitPath(const std::string& path) {
    // Splits at both separators on a platform that has two.
    const std::string name = toText(toPath(path).filename());
    PathParts parts{path.substr(0, path.size() - name.size()), {}, name};
    parts.directory = parts.prefix;
    if (toPath(parts.directory).has_relative_path()) { // the separator belongs to the name of a root
        parts.directory.pop_back();
    }
    return parts;
}

std::string spellPath(const std::string& path) {
    const PathParts parts = splitPath(path);
    return toText(spellDirectory(parts.directory) / toPath(parts.name));
}

std::string directoryPrefix(const std::string& directory) {
    // The trailing separator excludes directories whose names only start with the same text.
    return directory.empty() ? directory : toText(spellDirectory(directory) / "");
}

} // namespace zel::storage
