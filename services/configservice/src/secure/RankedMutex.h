#pragma once

#include <kyr/ThreadSafety.h>

#include <cstdint>

namespace zel {

/// The order of the locks that are held together, outermost first. A thread that holds a lock may acquire locks of a
/// higher rank, and the same lock again. The locks of the stores are inside all of these.
enum class LockRank : std::uint8_t {
    Adapter,
    Chain,
    Observers, ///< Held while observers are called; they may read the chain and add stores.
    Innermost, ///< Held while a table is read; no other lock is acquired under it.
};

/// Tracks which ranked locks the calling thread holds.
class LockOrder {
public:
    /// Call before acquiring the lock. Ends the process if the thread holds another lock of this rank or a higher one,
    /// unless it already holds this same lock.
    static void enter(const void* lock, int rank);
    static void leave(const void* lock);
};

/// A standard mutex with a rank. In a debug build a thread that violates the order ends the process with a message,
/// even if no deadlock happens.
template <class Lock, LockRank rank>
class LUMORA_CAPABILITY("mutex") RankedMutex {
public:
    void lock() LUMORA_ACQUIRE() {
#ifndef NDEBUG
        LockOrder::enter(this, static_cast<int>(rank));
#endif
        mutex.lock();
    }
    void unlock() LUMORA_RELEASE() {
        mutex.unlock();
#ifndef NDEBUG
        LockOrder::leave(this);
#endif
    }

private:
    Lock mutex;
};

} // namespace zel
