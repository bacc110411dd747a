#pragma once

#include <memory>

namespace ZelUnified {

class ConfigFileCacheTimerCallBack;
class UnifiedFactory;

/// Delays and merges file writes: the first request for a file settles the moment; more of them, until its callback has
/// finished, are dropped. The callback runs on the background dispatcher. Any thread.
class ConfigFileCacheTimer {
public:
    explicit ConfigFileCacheTimer(std::shared_ptr<UnifiedFactory> unifiedFactory);
    ConfigFileCacheTimer(const ConfigFileCacheTimer&) = delete;
    ConfigFileCacheTimer& operator=(const ConfigFileCacheTimer&) = delete;
    /// No waiting callback is called any more.
    virtual ~ConfigFileCacheTimer();

    /// Milliseconds are cut to whole seconds; less than one fires at once, on another thread. A null callback is
    /// ignored.
    virtual void scheduleTimer(std::shared_ptr<ConfigFileCacheTimerCallBack> callback, int milliseconds);
    /// Afterwards no callback that has not begun is called.
    virtual void clearTimers();
    /// The files that wait or are being written.
    int getCount();

private:
    class Impl;
    class TimerImpl;
    std::shared_ptr<Impl> impl;
};

} // namespace ZelUnified
