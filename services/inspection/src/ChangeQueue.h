#pragma once

#include "Change.h"

#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace inspection {

/// Passes changes from the services dispatcher's thread to the socket's thread. Bounded: the client may change more
/// than can be distributed. Any thread.
class ChangeQueue {
public:
    explicit ChangeQueue(std::size_t mostChanges) : capacity(mostChanges) {}

    /// The changes since the last call of extract().
    struct Batch {
        std::vector<Change> changes;
        /// The number of events of each key that did not fit, for its watchers. The number of keys is bounded.
        std::map<std::wstring, std::size_t> lost;
    };

    /// Adds a change, or counts its events as lost. Returns true if the queue was empty, so that the reader must be
    /// woken.
    bool push(Change change) {
        const KyrCoreUtils::LockGuard lock(mutex);
        const bool wasEmpty = batch.changes.empty();
        if (batch.changes.size() >= capacity) {
            batch.lost[change.key] += change.countEvents();
            return false;
        }
        batch.changes.push_back(std::move(change));
        return wasEmpty;
    }

    /// Removes and returns the queued changes.
    Batch extract() {
        Batch extracted;
        const KyrCoreUtils::LockGuard lock(mutex);
        std::swap(extracted, batch);
        return extracted;
    }

private:
    const std::size_t capacity;
    KyrCoreUtils::AnnotatedMutex<> mutex;
    Batch batch LUMORA_GUARDED_BY(mutex);
};

} // namespace inspection
