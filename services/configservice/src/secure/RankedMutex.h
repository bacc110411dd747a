#pragma once

#ifndef NDEBUG
#include "LockOrder.h"
#endif

#include <cstdint>

namespace zel {

/// The order of the locks that threads of several owners take together, outermost first. A thread that holds one may
/// take those of a higher rank, and again what it holds. A store's own locks lie within all of these.
enum class LockRank : std::uint8_t {
    Adapter,
    Chain,
    Observers, ///< Held while observers are called, who may read the chain and let stores arrive.
    Innermost, ///< Held for a look at a table; nothing is taken under it.
};

/// A standard mutex of a rank. In a debug build a thread that breaks the order ends the process with a message, whether
/// or not it would have met another thread there.
template <class Lock, LockRank rank>
class RankedMutex {
public:
    void lock() {
#ifndef NDEBUG
        LockOrder::enter(this, static_cast<int>(rank));
#endif
        mutex.lock();
    }
    void unlock() {
        mutex.unlock();
#ifndef NDEBUG
        LockOrder::leave(this);
#endif
    }

private:
    Lock mutex;
};

} // namespace zel
