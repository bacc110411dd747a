#pragma once

#include <zel/PowerEventObserver.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

namespace testing_host {

/// Records the received events after it has run the test's reaction.
class RecordingPowerObserver final : public ZelSystemMonitor::PowerEventObserver {
public:
    using Type = ZelSystemMonitor::PowerEventTypeEnum::PowerEventType;

    explicit RecordingPowerObserver(std::function<void(Type)> whenCalled = {}) : work(std::move(whenCalled)) {}

    void onPowerEvent(Type type) override {
        if (work) {
            work(type);
        }
        {
            const std::lock_guard lock(mutex);
            types.push_back(type);
        }
        changed.notify_all();
    }

    std::vector<int> getTypes() const {
        const std::lock_guard lock(mutex);
        return types;
    }
    /// Returns the events once there are `count` of them, or at the deadline.
    std::vector<int> waitForTypes(std::size_t count) {
        std::unique_lock lock(mutex);
        changed.wait_for(lock, std::chrono::seconds(60), [&] { return types.size() >= count; });
        return types;
    }

private:
    const std::function<void(Type)> work;
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::vector<int> types;
};

} // namespace testing_host
