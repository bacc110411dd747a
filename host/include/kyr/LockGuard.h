#pragma once

#include <kyr/ThreadSafety.h>

namespace KyrCoreUtils {

/// Holds a lock for a scope, like std::lock_guard, which clang's thread-safety analysis does not recognise.
template <class Lock>
class LUMORA_SCOPED_CAPABILITY LockGuard {
public:
    explicit LockGuard(Lock& locked) LUMORA_ACQUIRE(locked) : lock(locked) { lock.lock(); }
    ~LockGuard() LUMORA_RELEASE() { lock.unlock(); }
    LockGuard(const LockGuard&) = delete;
    LockGuard& operator=(const LockGuard&) = delete;

private:
    Lock& lock;
};

} // namespace KyrCoreUtils
