#pragma once

#include <memory>

namespace ZelUnified {

class ConfigFileCacheTimerCallBack;
class UnifiedFactory;

/// Delays and merges file writes. The first request for a file sets the time; further requests are dropped until the
/// callback has returned. The callback runs on the background dispatcher. Any thread.
class ConfigFileCacheTimer {
public:
    explicit ConfigFileCacheTimer(std::shared_ptr<UnifiedFactory> unifiedFactory);
    ConfigFileCacheTimer(const ConfigFileCacheTimer&) = delete;
    ConfigFileCacheTimer& operator=(const ConfigFileCacheTimer&) = delete;
    /// Cancels all pending callbacks.
    virtual ~ConfigFileCacheTimer();

    /// Schedules the callback. The delay is truncated to whole seconds; with less than one second the timer fires
    /// immediately, on another thread. Ignores a null callback.
    virtual void scheduleTimer(std::shared_ptr<ConfigFileCacheTimerCallBack> callback, int milliseconds);
    /// Cancels all callbacks that have not started.
    virtual void clearTimers();
    /// Returns the number of files whose write is pending or in progress.
    int getCount();

private:
    class Impl;
    class TimerImpl;
    std::shared_ptr<Impl> impl;
};

} // namespace ZelUnified
