#pragma once

#include <memory>
#include <string>
#include <utility>

namespace zel::platform {

/// An attempt to lock the configuration directory of a profile; the platform's folder implements it. The destructor
/// releases the lock. One thread at a time.
class ProfileDirectoryLock {
public:
    /// See ZelUnified::ProfileLock::Problem.
    struct Problem {
        std::string text;
        bool isInUse = false;
    };

    /// Tries once to acquire the lock, without waiting. Creates both directories if they are missing. Never returns
    /// null.
    static std::unique_ptr<ProfileDirectoryLock> acquire(const std::string& configDirectory,
                                                         const std::string& stateDirectory);
    /// Returns the problem that acquire() would report now. Changes nothing. See ZelUnified::ProfileLock::findProblem()
    /// for what it cannot see.
    static Problem findProblem(const std::string& configDirectory, const std::string& stateDirectory);

    virtual ~ProfileDirectoryLock() = default;
    ProfileDirectoryLock(const ProfileDirectoryLock&) = delete;
    ProfileDirectoryLock& operator=(const ProfileDirectoryLock&) = delete;

    const std::string& getPath() const noexcept { return path; }
    bool isHeld() const noexcept { return held; }
    /// Returns the id of the other process that holds the lock; 0 if it is unknown.
    long getHolder() const noexcept { return holder; }
    /// Returns a text for the user; "" if the lock is held.
    const std::string& getProblem() const noexcept { return problem; }

protected:
    explicit ProfileDirectoryLock(std::string configDirectory) : path(std::move(configDirectory)) {}

    /// One of these functions records the result of the attempt. `error` is an errno value.
    void recordSuccess() noexcept { held = true; }
    void recordOpenFailure(int error) { problem = makeOpenFailure(path, error).text; }
    void recordLockFailure(int error);
    void recordUse(long otherProcess);

    static Problem makeOpenFailure(const std::string& path, int error);
    static Problem makeUse(const std::string& path, long holder);

private:
    const std::string path;
    bool held = false;
    long holder = 0;
    std::string problem;
};

} // namespace zel::platform
