#pragma once

#include <zel/HostExport.h>

#include <memory>
#include <string>

namespace zel::platform {
class ProfileDirectoryLock;
}

namespace ZelUnified {

/// Prevents a second process from using a profile. The object holds an advisory lock on the configuration directory
/// itself until it is destroyed; the system releases the lock if the process dies. Different spellings of one directory
/// share one lock. The state folder of the other process has no influence, and removing files does not release the
/// lock.
class LUMORA_HOST_API ProfileLock {
public:
    /// Why the lock cannot be acquired.
    struct Problem {
        std::string text;     ///< For the user; "" if there is no problem.
        bool isInUse = false; ///< Another process holds the lock.
    };

    /// Tries once to acquire the lock, without waiting. Creates both directories if they are missing. The state folder
    /// only records which process holds the lock; the lock works without it. File errors do not throw; see isHeld().
    ProfileLock(const std::string& configDirectory, const std::string& stateDirectory);
    /// Returns the problem that an attempt to acquire the lock would report now. Neither acquires the lock nor changes
    /// anything. If the directory is missing, nobody uses it. On Linux, does not see a process that holds the lock
    /// without the mark of this class and is not recorded in this state folder: a program that locks the directory in
    /// another way, or a process with another state folder on a file system without such marks.
    static Problem findProblem(const std::string& configDirectory, const std::string& stateDirectory);

    /// Releases the lock. Before that, drops and logs pending content of protected files in the directory: nothing may
    /// write to the profile after the release.
    ~ProfileLock();
    ProfileLock(const ProfileLock&) = delete;
    ProfileLock& operator=(const ProfileLock&) = delete;

    bool isHeld() const noexcept;
    /// Returns the id of the process that holds the profile if this object does not; 0 if it is unknown.
    long getHolder() const noexcept;
    /// Returns a text for the user that says why the lock is not held; "" if it is held.
    const std::string& getProblem() const noexcept;

private:
    const std::unique_ptr<zel::platform::ProfileDirectoryLock> directory;
};

} // namespace ZelUnified
