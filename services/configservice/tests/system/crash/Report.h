#pragma once

#include <cstdint>

namespace crash_test {

/// A report of a process on the disk, small enough for an atomic write to a pipe.
struct Report {
    enum class Kind : std::uint32_t {
        Loaded, ///< The initial content.
        Main,   ///< The content of the main file after a write of it.
        Backup, ///< The content of the backup after a write of it.
        Lost,   ///< A write without an injected fault did not reach the file.
        // Of a process with many writers, by the number of the file.
        LoadedFile, ///< What it began with.
        File        ///< What the file holds after a write of it.
    };

    Kind kind = Kind::Loaded;
    std::uint32_t number = 0; ///< 0 for an unreadable file.
    std::uint32_t file = 0;
};

} // namespace crash_test
