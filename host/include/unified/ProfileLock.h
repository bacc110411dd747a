#pragma once

#include <zel/HostExport.h>

#include <memory>
#include <string>

namespace ZelUnified {

/// Keeps a second process off a profile: an advisory lock on the configuration directory itself, held while the object
/// lives. The system releases it when the process dies. All spellings of one directory are one lock, the state folder
/// of the other process doesn't matter, and removing files can't release it.
class LUMORA_HOST_API ProfileLock {
public:
    /// Tries once, without waiting. Makes both directories if they are missing. The state folder only records which
    /// process holds the lock; the lock does not need it. Never throws for a file's sake.
    ProfileLock(const std::string& configDirectory, const std::string& stateDirectory);
    /// Drops content of protected files of the directory that waits to be written, with a log line: nothing writes to
    /// the profile after the release.
    ~ProfileLock();
    ProfileLock(const ProfileLock&) = delete;
    ProfileLock& operator=(const ProfileLock&) = delete;

    bool isHeld() const noexcept;
    /// The process that holds the profile when this object doesn't; 0 when that isn't known.
    long getHolder() const noexcept;
    /// Why the lock isn't held, for the user; "" when it is.
    const std::string& getProblem() const noexcept;

private:
    class LockedDirectory;

    const std::unique_ptr<LockedDirectory> directory;
};

} // namespace ZelUnified
