#pragma once

#include <memory>
#include <string>
#include <utility>

namespace ZelUnified {

/// An attempt to lock the configuration directory of a profile; the platform's folder implements it. The destructor
/// releases the lock. One thread at a time.
class ProfileDirectoryLock {
public:
    /// Tries once to acquire the lock, without waiting. Creates both directories if they are missing. Never returns
    /// null.
    static std::unique_ptr<ProfileDirectoryLock> acquire(const std::string& configDirectory,
                                                         const std::string& stateDirectory);
    /// Returns the problem that acquire() would report now; "" if it would succeed. Changes nothing.
    static std::string findProblem(const std::string& configDirectory, const std::string& stateDirectory);

    virtual ~ProfileDirectoryLock() = default;
    ProfileDirectoryLock(const ProfileDirectoryLock&) = delete;
    ProfileDirectoryLock& operator=(const ProfileDirectoryLock&) = delete;

    const std::string path;
    bool held = false;
    long holder = 0;     ///< The id of the other process that holds the lock; 0 if it is unknown.
    std::string problem; ///< For the user; "" if the lock is held.

protected:
    explicit ProfileDirectoryLock(std::string configDirectory) : path(std::move(configDirectory)) {}

    /// The texts of the problems. `error` is an errno value.
    static std::string describeOpenFailure(const std::string& path, int error);
    static std::string describeLockFailure(const std::string& path, int error);
    static std::string describeUse(const std::string& path, long holder);
};

} // namespace ZelUnified
