#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace testing_host {

/// Something that happens once, on another thread. The deadline only ends a test that would hang.
class Signal {
public:
    void set() {
        // Under the lock: who waits may end this object's life at once.
        const std::lock_guard lock(mutex);
        happened = true;
        changed.notify_all();
    }

    /// False when it did not happen before the deadline.
    bool wait() { return waitFor(std::chrono::seconds(60)); }
    bool waitFor(std::chrono::milliseconds timeout) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, timeout, [this] { return happened; });
    }

    bool isSet() const {
        const std::lock_guard lock(mutex);
        return happened;
    }

private:
    mutable std::mutex mutex;
    std::condition_variable changed;
    bool happened = false;
};

} // namespace testing_host
