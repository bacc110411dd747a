#pragma once

#include <cstdint>

namespace crash_test {

/// What a process tells of the disk, small enough to go through a pipe in one piece.
struct Report {
    enum class Kind : std::uint32_t {
        Loaded, ///< What it began with.
        Main,   ///< What the main file holds after a write of it.
        Backup, ///< The same of the backup.
        Lost,   ///< A write that nothing was in the way of did not reach the file.
        // Of a process with many writers, by the number of the file.
        LoadedFile, ///< What it began with.
        File        ///< What the file holds after a write of it.
    };

    Kind kind = Kind::Loaded;
    std::uint32_t number = 0; ///< 0 for a file that gives none.
    std::uint32_t file = 0;
};

} // namespace crash_test
