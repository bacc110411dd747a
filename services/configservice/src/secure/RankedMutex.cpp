#include "RankedMutex.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <vector>

namespace zel {

namespace {

struct Held {
    const void* lock;
    int rank;
};

thread_local std::vector<Held> heldByThisThread;

} // namespace

void LockOrder::enter(const void* lock, int rank) {
    auto& held = heldByThisThread;
    const bool again = std::any_of(held.begin(), held.end(), [&](const Held& each) { return each.lock == lock; });
    const auto inner = std::find_if(held.begin(), held.end(), [&](const Held& each) { return each.rank >= rank; });
    if (!again && inner != held.end()) {
        std::fprintf(stderr, "The lock order is broken: rank %d is acquired while rank %d is held.\n", rank,
                     inner->rank);
        std::abort();
    }
    held.push_back({lock, rank});
}

void LockOrder::leave(const void* lock) {
    auto& held = heldByThisThread;
    const auto last = std::find_if(held.rbegin(), held.rend(), [&](const Held& each) { return each.lock == lock; });
    held.erase(std::next(last).base());
}

} // namespace zel
