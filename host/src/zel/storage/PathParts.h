#pragma once

#include <string>

namespace zel::storage {

/// A path cut at its last separator.
struct PathParts {
    std::string prefix;    ///< Up to and with the separator; "" for a bare name.
    std::string directory; ///< Without the separator, but "/" for the root.
    std::string name;
};

PathParts splitPath(const std::string& path);

/// Returns one spelling for all paths to a file, whether it exists or not. A link in the last place is not followed.
std::string spellPath(const std::string& path);
/// Returns what the spelled paths of all files at and below `directory` begin with; "" for "".
std::string directoryPrefix(const std::string& directory);

} // namespace zel::storage
