#pragma once

#include <array>
#include <string>

namespace ZelUnified {

/// Describes a loaded library. The headers of other plug-ins refer to it; the host reads none.
struct LibraryRecord {
    std::string name;
    std::string path;
    std::array<void*, 19> entries{}; ///< Null by default.
};

} // namespace ZelUnified
