#pragma once

#include <zel/HostExport.h>

#include <cstdint>
#include <memory>

namespace zel::common {

/// Called by a BackgroundTimer on the timer's thread.
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

    /// Arms the timer, anew if it was armed. A count of at most 0 fires at once, on the timer's thread.
    virtual void start(std::weak_ptr<BackgroundTimerCallback> callback, const std::int64_t& seconds);
    /// Afterwards no onTimer() comes: waits for one that runs, unless called from it.
    virtual void stop();

private:
    class Impl;
    std::shared_ptr<Impl> impl;
};

} // namespace zel::common
