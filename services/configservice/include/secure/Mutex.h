#pragma once

#include <ConfigServiceExport.h>

#include <memory>
#include <mutex>

namespace zel {

/// A recursive lock. If the platform's lock cannot be allocated, prints a message to standard output and locks nothing.
class LUMORA_CONFIG_API Mutex {
public:
    Mutex();
    ~Mutex();
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock();
    void unlock();

    /// Holds the mutex for a scope, or until release().
    class ScopedLock {
    public:
        explicit ScopedLock(Mutex& locked) : mutex(&locked) { locked.lock(); }
        ~ScopedLock() { release(); }
        ScopedLock(const ScopedLock&) = delete;
        ScopedLock& operator=(const ScopedLock&) = delete;

        void release() {
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
