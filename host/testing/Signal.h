#pragma once

#include <kyr/LockGuard.h>
#include <kyr/WaitLock.h>

#include <chrono>
#include <condition_variable>

namespace testing_host {

/// A one-time event from another thread. The timeout only ends a test that would hang.
class Signal {
public:
    void set() {
        // Notifies under the lock, because the waiting thread may destroy this object immediately.
        const KyrCoreUtils::LockGuard lock(mutex);
        happened = true;
        changed.notify_all();
    }

    /// Returns false on timeout.
    bool wait() { return waitFor(std::chrono::seconds(60)); }
    bool waitFor(std::chrono::milliseconds timeout) {
        KyrCoreUtils::WaitLock lock(mutex);
        return changed.wait_for(lock.get(), timeout, [this]() LUMORA_REQUIRES(mutex) { return happened; });
    }

    bool isSet() const {
        const KyrCoreUtils::LockGuard lock(mutex);
        return happened;
    }

private:
    mutable KyrCoreUtils::AnnotatedMutex<> mutex;
    std::condition_variable changed;
    bool happened LUMORA_GUARDED_BY(mutex) = false;
};

} // namespace testing_host
