#pragma once

namespace zel {

/// What the calling thread holds of the ranked locks.
class LockOrder {
public:
    /// Before a thread takes the lock. Ends the process when it holds another one of this rank or a higher one, unless
    /// it holds this very lock already.
    static void enter(const void* lock, int rank);
    static void leave(const void* lock);
};

} // namespace zel
