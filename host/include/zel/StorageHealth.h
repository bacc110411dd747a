#pragma once

#include <zel/ReadResult.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace zel::storage {

/// The outcome of a write. Failed retries of pending content count as writes.
struct WriteOutcome {
    bool succeeded = false;
    std::string cause; ///< The cause of a failure, for a user; "" on success. Contains no content and no path.
    std::chrono::system_clock::time_point time;
};

/// One protected file.
struct ProtectedFileHealth {
    /// Returns true if this process wrote the file and its last write failed.
    bool hasFailedWrite() const { return lastWrite && !lastWrite->succeeded; }
    /// Returns true if the file exists but cannot be used, or if a change is not on the disk.
    bool needsAttention() const {
        return (state != ReadResult::Ok && state != ReadResult::Absent) || pending || hasFailedWrite();
    }

    std::string path;                      ///< The physical path.
    ReadResult state = ReadResult::Absent; ///< The state of the file on the disk, regardless of pending content.
    std::optional<WriteOutcome> lastWrite; ///< The last write by this process; empty if it did not write the file.
    bool pending = false;                  ///< Content is kept in memory until it can be written.
};

/// A file that this process moved aside.
struct MovedFile {
    std::string original;
    std::string keptAs; ///< The new path, in the same directory.
    ReadResult reason = ReadResult::Damaged;
};

/// A file on the disk that this process or an earlier one moved aside.
struct KeptFile {
    std::string original;
    std::string keptAs;
    ReadResult state = ReadResult::Damaged; ///< The result of reading it now; Ok if it can be restored.
};

/// The state of the protected files of one directory tree.
struct StorageHealth {
    std::vector<ProtectedFileHealth> files; ///< Sorted by path.
    std::vector<MovedFile> movedAside;      ///< In chronological order.
};

} // namespace zel::storage
