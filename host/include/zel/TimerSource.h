#pragma once

#include <zel/HostExport.h>

#include <cstdint>
#include <functional>
#include <memory>

namespace zel::common {

/// The source of time for BackgroundTimer. Any thread.
class LUMORA_HOST_API TimerSource {
public:
    using Alarm = std::uint64_t;

    virtual ~TimerSource() = default;

    /// Calls `ring` once after `seconds`, never inside set() and with no lock held; immediately if `seconds` is at most
    /// 0.
    virtual Alarm set(std::int64_t seconds, std::function<void()> ring) = 0;
    /// Cancels the alarm, unless it has fired or is about to fire.
    virtual void cancel(Alarm alarm) = 0;

    /// Returns the source of the process: the timer thread on the monotonic clock, unless it was replaced.
    static std::shared_ptr<TimerSource> getInstance();
    /// Replaces the source for timers that are started later; null restores the timer thread. For tests, and for
    /// programs that end before a timer would fire.
    static void overrideInstance(std::shared_ptr<TimerSource> source);
};

} // namespace zel::common
