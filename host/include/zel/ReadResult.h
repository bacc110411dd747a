#pragma once

namespace zel::storage {

/// The result of reading a protected file.
enum class ReadResult {
    Ok,
    Absent,
    Unreadable, ///< Not a regular file, no access, more than 64 MiB, or of a later version.
    WrongKey,   ///< Written with another key or category, or the key does not exist any more.
    Damaged,    ///< Not in the expected format, truncated, or changed after it was written.
    Empty       ///< Valid, but without content.
};

} // namespace zel::storage
