#pragma once

#include <array>
#include <string>

namespace ZelUnified {

/// What a host may note of a loaded library. Named by other plug-ins' headers; nothing here reads one.
struct LibraryRecord {
    std::string name;
    std::string path;
    std::array<void*, 19> entries{}; ///< All empty at first.
};

} // namespace ZelUnified
