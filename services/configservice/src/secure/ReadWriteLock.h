#pragma once

#include "Condition.h"

#include <secure/Mutex.h>

#include <cstdint>

namespace zel {

/// Lock for many readers or one writer. Not recursive: waiting writers go first, so a thread that acquires the read
/// lock twice can deadlock with a waiting writer.
class ReadWriteLock {
public:
    void lockForReading();
    void lockForWriting();
    void unlock();

    /// Returns the number of threads that wait for the write lock. For diagnosis only; it may be outdated on return.
    std::int32_t countWaitingWriters();

    /// Holds the lock for a scope, or until release().
    template <void (ReadWriteLock::*acquire)()>
    class Scoped {
    public:
        explicit Scoped(ReadWriteLock& locked) : lock(&locked) { (locked.*acquire)(); }
        ~Scoped() { release(); }
        Scoped(const Scoped&) = delete;
        Scoped& operator=(const Scoped&) = delete;

        void release() {
            if (lock != nullptr) {
                lock->unlock();
                lock = nullptr;
            }
        }

    private:
        ReadWriteLock* lock;
    };

private:
    Mutex mutex;
    std::int32_t state = 0; ///< The number of readers, or -1 for a writer.
    Condition readers;
    std::int32_t waitingWriters = 0;
    Condition writers;
};

using ReadLock = ReadWriteLock::Scoped<&ReadWriteLock::lockForReading>;
using WriteLock = ReadWriteLock::Scoped<&ReadWriteLock::lockForWriting>;

} // namespace zel
