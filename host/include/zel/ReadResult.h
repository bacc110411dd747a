#pragma once

namespace zel::storage {

/// Why a protected file could not be read.
enum class ReadResult {
    Ok,
    Absent,
    Unreadable, ///< No regular file, no access, over 64 MiB, or of a later version.
    WrongKey,   ///< Written under another key or category, or the key is gone.
    Damaged,    ///< Not in the facility's format, cut short, or changed since it was written.
    Empty       ///< In order, but without content.
};

} // namespace zel::storage
