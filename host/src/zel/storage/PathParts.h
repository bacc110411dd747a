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

} // namespace zel::storage
