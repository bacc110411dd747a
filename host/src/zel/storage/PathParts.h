#pragma once

#include <string>

namespace zel::storage {

/// A path split at its last separator.
struct PathParts {
    std::string prefix;    ///< The part up to and including the separator; "" for a plain name.
    std::string directory; ///< The same without the separator, but "/" for the root.
    std::string name;
};

PathParts splitPath(const std::string& path);

/// Returns the same spelling for all paths of a file, whether it exists or not. Does not follow a link in the last
/// component.
std::string spellPath(const std::string& path);
/// Returns the common prefix of the normalized paths of all files at and below `directory`; "" for "".
std::string directoryPrefix(const std::string& directory);

} // namespace zel::storage
