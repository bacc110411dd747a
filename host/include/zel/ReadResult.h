#pragma once

#include <string>

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

/// Returns the state of a file as words for a person: "good", "damaged", "encrypted with another key"... Any thread.
inline std::string describe(ReadResult state) {
    switch (state) {
    case ReadResult::Ok:
        return "good";
    case ReadResult::Absent:
        return "absent";
    case ReadResult::Unreadable:
        return "unreadable";
    case ReadResult::WrongKey:
        return "encrypted with another key";
    case ReadResult::Damaged:
        return "damaged";
    case ReadResult::Empty:
        return "empty";
    }
    return "unknown";
}

} // namespace zel::storage
