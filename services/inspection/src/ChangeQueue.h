#pragma once

#include "Change.h"

#include <cstddef>
#include <mutex>
#include <vector>

namespace inspection {

/// Passes changes from the services dispatcher's thread to the socket's thread. Bounded: the client may change more
/// than can be distributed. Any thread.
class ChangeQueue {
public:
    explicit ChangeQueue(std::size_t mostChanges) : capacity(mostChanges) {}

    /// The changes since the last call of take().
    struct Batch {
        std::vector<Change> changes;
        std::size_t lost = 0; ///< How many did not fit behind them.
    };

    /// Adds a change, or counts it as lost. Returns true if the queue was empty, so that the reader must be woken.
    bool push(Change change) {
        const std::lock_guard lock(mutex);
        const bool wasEmpty = batch.changes.empty();
        if (batch.changes.size() >= capacity) {
            ++batch.lost;
            return false;
        }
        batch.changes.push_back(std::move(change));
        return wasEmpty;
    }

    Batch take() {
        Batch taken;
        const std::lock_guard lock(mutex);
        std::swap(taken, batch);
        return taken;
    }

private:
    const std::size_t capacity;
    std::mutex mutex;
    Batch batch; ///< Guarded by `mutex`.
};

} // namespace inspection
