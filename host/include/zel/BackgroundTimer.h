#pragma once

#include <zel/HostExport.h>

#include <cstdint>
#include <memory>

namespace zel::common {

/// The callback of a BackgroundTimer. Called on the timer's thread.
class LUMORA_HOST_API BackgroundTimerCallback {
public:
    BackgroundTimerCallback() = default;
    virtual ~BackgroundTimerCallback() = default;
    virtual void onTimer() = 0;
};

/// A one-shot timer on the monotonic clock. All timers of a process share one thread.
class LUMORA_HOST_API BackgroundTimer {
public:
    BackgroundTimer();
    BackgroundTimer(const BackgroundTimer&) = delete;
    BackgroundTimer& operator=(const BackgroundTimer&) = delete;
    virtual ~BackgroundTimer();

    /// Starts the timer, or restarts it. If `seconds` is at most 0, it fires immediately, on the timer's thread.
    virtual void start(std::weak_ptr<BackgroundTimerCallback> callback, const std::int64_t& seconds);
    /// Stops the timer. After the return, onTimer() is not called: stop() waits for a running onTimer(), unless it is
    /// called from it.
    virtual void stop();

private:
    class Impl;
    std::shared_ptr<Impl> impl;
};

} // namespace zel::common
