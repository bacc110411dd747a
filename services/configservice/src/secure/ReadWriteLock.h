#pragma once

#include "Condition.h"

#include <kyr/ThreadSafety.h>

#include <secure/Mutex.h>

#include <cstdint>

namespace zel {

/// Lock for many readers or one writer. Not recursive: waiting writers go first, so a thread that acquires the read
/// lock twice can deadlock with a waiting writer.
class LUMORA_CAPABILITY("mutex") ReadWriteLock {
public:
    void lockForReading() LUMORA_ACQUIRE_SHARED() { enterAsReader(); }
    void lockForWriting() LUMORA_ACQUIRE() { enterAsWriter(); }
    void unlock() LUMORA_RELEASE_GENERIC() { leave(); }

    /// Returns the number of threads that wait for the write lock. For diagnosis only; it may be outdated on return.
    std::int32_t countWaitingWriters();

private:
    // Own functions, because the thread-safety analysis skips the bodies of those that acquire or release this lock.
    void enterAsReader();
    void enterAsWriter();
    void leave();

    Mutex mutex;
    std::int32_t state LUMORA_GUARDED_BY(mutex) = 0; ///< The number of readers, or -1 for a writer.
    Condition readers;
    std::int32_t waitingWriters LUMORA_GUARDED_BY(mutex) = 0;
    Condition writers;
};

/// Holds the read lock for a scope, or until release().
class LUMORA_SCOPED_CAPABILITY ReadLock {
public:
    explicit ReadLock(ReadWriteLock& locked) LUMORA_ACQUIRE_SHARED(locked) : lock(&locked) { locked.lockForReading(); }
    ~ReadLock() LUMORA_RELEASE() { release(); }
    ReadLock(const ReadLock&) = delete;
    ReadLock& operator=(const ReadLock&) = delete;

    void release() LUMORA_RELEASE() {
        if (lock != nullptr) {
            lock->unlock();
            lock = nullptr;
        }
    }

private:
    ReadWriteLock* lock;
};

/// Holds the write lock for a scope, or until release().
class LUMORA_SCOPED_CAPABILITY WriteLock {
public:
    explicit WriteLock(ReadWriteLock& locked) LUMORA_ACQUIRE(locked) : lock(&locked) { locked.lockForWriting(); }
    ~WriteLock() LUMORA_RELEASE() { release(); }
    WriteLock(const WriteLock&) = delete;
    WriteLock& operator=(const WriteLock&) = delete;

    void release() LUMORA_RELEASE() {
        if (lock != nullptr) {
            lock->unlock();
            lock = nullptr;
        }
    }

private:
    ReadWriteLock* lock;
};

} // namespace zel
