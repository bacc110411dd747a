#pragma once

namespace zel {

/// Tracks which ranked locks the calling thread holds.
class LockOrder {
public:
    /// Call before acquiring the lock. Ends the process if the thread holds another lock of this rank or a higher one,
    /// unless it already holds this same lock.
    static void enter(const void* lock, int rank);
    static void leave(const void* lock);
};

} // namespace zel
