#pragma once

#include <kyr/AnnotatedMutex.h>

#include <mutex>

namespace KyrCoreUtils {

/// Holds a mutex for a scope in which the thread waits for a std::condition_variable.
class LUMORA_SCOPED_CAPABILITY WaitLock {
public:
    explicit WaitLock(AnnotatedMutex<>& locked) LUMORA_ACQUIRE(locked) : lock(locked.getStandardMutex()) {}
    ~WaitLock() LUMORA_RELEASE() = default;
    WaitLock(const WaitLock&) = delete;
    WaitLock& operator=(const WaitLock&) = delete;

    /// Returns the lock to pass to the condition variable. Annotate the predicate of a wait with LUMORA_REQUIRES.
    std::unique_lock<std::mutex>& get() { return lock; }

private:
    std::unique_lock<std::mutex> lock;
};

} // namespace KyrCoreUtils
