#include "RankedMutex.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <type_traits>

namespace zel {

namespace {

/// A lock that this thread holds, and how often it has acquired it. A thread holds at most one lock of each rank.
struct Held {
    const void* lock = nullptr;
    std::size_t count = 0;
};

using HeldByRank = std::array<Held, static_cast<std::size_t>(LockRank::Innermost) + 1>;

// mingw-w64 frees the variables of a thread before it calls their destructors.
static_assert(std::is_trivially_destructible_v<HeldByRank>);
constinit thread_local HeldByRank heldByThisThread{};

} // namespace

void LockOrder::enter(const void* lock, int rank) {
    auto& held = heldByThisThread;
    auto& own = held.at(static_cast<std::size_t>(rank));
    if (own.lock != lock) {
        const auto inner =
            std::find_if(held.begin() + rank, held.end(), [](const Held& each) { return each.lock != nullptr; });
        if (inner != held.end()) {
            std::fprintf(stderr, "The lock order is broken: rank %d is acquired while rank %d is held.\n", rank,
                         static_cast<int>(inner - held.begin()));
            std::abort();
        }
        own.lock = lock;
    }
    ++own.count;
}

void LockOrder::leave(const void* lock) {
    auto& held = heldByThisThread;
    const auto own = std::find_if(held.begin(), held.end(), [&](const Held& each) { return each.lock == lock; });
    if (--own->count == 0) {
        own->lock = nullptr;
    }
}

} // namespace zel
