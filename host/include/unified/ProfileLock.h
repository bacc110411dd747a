#pragma once

#include <zel/HostExport.h>

#include <memory>
#include <string>

namespace ZelUnified {

/// Keeps a second process off a profile: an advisory lock, held while the object lives, in the state folder, for one
/// configuration directory. The system releases it when the process dies. Different spellings of one directory meet.
class LUMORA_HOST_API ProfileLock {
public:
    /// Tries once, without waiting. The state folder is made when it is missing. Never throws for a file's sake.
    ProfileLock(const std::string& configDirectory, const std::string& stateDirectory);
    ~ProfileLock();
    ProfileLock(const ProfileLock&) = delete;
    ProfileLock& operator=(const ProfileLock&) = delete;

    bool isHeld() const noexcept;
    /// The process that holds the profile when this object doesn't; 0 when that isn't known.
    long getHolder() const noexcept;
    /// Why the lock isn't held, for the user; "" when it is.
    const std::string& getProblem() const noexcept;

private:
    class LockFile;

    const std::unique_ptr<LockFile> file;
};

} // namespace ZelUnified
