#pragma once

#include <kyr/ThreadSafety.h>

#include <mutex>

namespace KyrCoreUtils {

/// A standard mutex that clang's thread-safety analysis recognises, which it does not for those of the standard
/// library. Acquire it with a LockGuard or a WaitLock.
template <class Lock = std::mutex>
class LUMORA_CAPABILITY("mutex") AnnotatedMutex {
public:
    void lock() LUMORA_ACQUIRE() { standardMutex.lock(); }
    void unlock() LUMORA_RELEASE() { standardMutex.unlock(); }
    /// Returns the standard mutex; only for WaitLock.
    Lock& getStandardMutex() { return standardMutex; }

private:
    Lock standardMutex;
};

} // namespace KyrCoreUtils
