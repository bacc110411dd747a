#pragma once

#include <ConfigMap.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>

namespace fleet_test {

/// Receives the settings of a watch, and waits for them. The time limit only ends a test that would hang.
class SettingsObserver {
public:
    void receive(ZelUnified::ConfigMap settings) {
        const std::lock_guard lock(mutex);
        latest = std::move(settings);
        ++calls;
        changed.notify_all();
    }

    bool waitFor(const std::function<bool(const ZelUnified::ConfigMap&)>& isReached) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, std::chrono::seconds(60), [&] { return calls > 0 && isReached(latest); });
    }
    bool waitForCalls(std::size_t count) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, std::chrono::seconds(60), [&] { return calls >= count; });
    }
    bool waitForValue(const std::wstring& key, const std::wstring& value) {
        return waitFor([&](const auto& settings) {
            const auto found = settings.find(key);
            return found != settings.end() && found->second == value;
        });
    }

    std::size_t countCalls() const {
        const std::lock_guard lock(mutex);
        return calls;
    }
    ZelUnified::ConfigMap getLatest() const {
        const std::lock_guard lock(mutex);
        return latest;
    }

private:
    mutable std::mutex mutex;
    std::condition_variable changed;
    ZelUnified::ConfigMap latest;
    std::size_t calls = 0;
};

} // namespace fleet_test
