#include "RankedMutex.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <type_traits>

namespace zel {

namespace {

/// The lock of one rank; a thread holds no two locks of one rank.
struct Held {
    const void* lock = nullptr;
    std::size_t times = 0;
};

using HeldByRank = std::array<Held, static_cast<std::size_t>(LockRank::Innermost) + 1>;

// One of the supported compilers (mingw-w64) calls the destructors of such variables after it has freed them.
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
    ++own.times;
}

void LockOrder::leave(const void* lock) {
    auto& held = heldByThisThread;
    const auto own = std::find_if(held.begin(), held.end(), [&](const Held& each) { return each.lock == lock; });
    if (--own->times == 0) {
        own->lock = nullptr;
    }
}

} // namespace zel
