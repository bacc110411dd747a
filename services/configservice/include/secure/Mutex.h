#pragma once

#include <kyr/ThreadSafety.h>

#include <ConfigServiceExport.h>

#include <memory>
#include <mutex>

namespace zel {

/// A recursive lock. If the platform's lock cannot be allocated, prints a message to standard output and locks nothing.
class LUMORA_CONFIG_API LUMORA_CAPABILITY("mutex") Mutex {
public:
    Mutex();
    ~Mutex();
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock() LUMORA_ACQUIRE();
    void unlock() LUMORA_RELEASE();

    /// Holds the mutex for a scope, or until release().
    class LUMORA_SCOPED_CAPABILITY ScopedLock {
    public:
        explicit ScopedLock(Mutex& locked) LUMORA_ACQUIRE(locked) : mutex(&locked) { locked.lock(); }
        ~ScopedLock() LUMORA_RELEASE() { release(); }
        ScopedLock(const ScopedLock&) = delete;
        ScopedLock& operator=(const ScopedLock&) = delete;

        void release() LUMORA_RELEASE() {
            if (mutex != nullptr) {
                mutex->unlock();
                mutex = nullptr;
            }
        }

    private:
        Mutex* mutex;
    };

private:
    std::unique_ptr<std::recursive_mutex> platformLock;
};

} // namespace zel
