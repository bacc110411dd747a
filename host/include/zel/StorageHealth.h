#pragma once

#include <zel/ReadResult.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace zel::storage {

/// How a write ended. Failed attempts to write kept content again count as writes.
struct WriteOutcome {
    bool succeeded = false;
    std::string cause; ///< Why it failed, for a user; "" after success. Contains no content and no path.
    std::chrono::system_clock::time_point time;
};

/// One protected file.
struct ProtectedFileHealth {
    std::string path;                      ///< The physical file.
    ReadResult state = ReadResult::Absent; ///< Of the file on the disk, whatever content is kept for it.
    std::optional<WriteOutcome> lastWrite; ///< By this process; empty if it did not write the file.
    bool pending = false;                  ///< Content is kept in memory and waits to be written.
};

/// A file that this process moved aside.
struct MovedFile {
    std::string original;
    std::string keptAs; ///< In the same directory.
    ReadResult reason = ReadResult::Damaged;
};

/// A file found on the disk that this or an earlier process moved aside.
struct KeptFile {
    std::string original;
    std::string keptAs;
    ReadResult state = ReadResult::Damaged; ///< What reading it gives now; Ok if it can be restored.
};

/// The state of the protected files of one directory tree.
struct StorageHealth {
    std::vector<ProtectedFileHealth> files; ///< Sorted by path.
    std::vector<MovedFile> movedAside;      ///< In the order in which they were moved.
};

} // namespace zel::storage
