#pragma once

#include <string>

namespace zel::platform {

/// The locks that processes hold on files, as the system lists them for everybody. It shows a lock without an attempt
/// to acquire it, which could make another process fail.
class LockTable {
public:
    /// Reads the list.
    LockTable();

    /// Returns false if the system does not show its list.
    bool isKnown() const { return !lines.empty(); }
    /// Returns true if a process holds a lock of flock() on the open file. On some file systems the list names other
    /// devices than the file; there, only a lock of `process` is recognized.
    bool contains(int descriptor, long process) const;

private:
    std::string lines;
};

} // namespace zel::platform
