#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace testing_host {

/// A one-time event from another thread. The timeout only ends a test that would hang.
class Signal {
public:
    void set() {
        // Notifies under the lock, because the waiting thread may destroy this object immediately.
        const std::lock_guard lock(mutex);
        happened = true;
        changed.notify_all();
    }

    /// Returns false on timeout.
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
