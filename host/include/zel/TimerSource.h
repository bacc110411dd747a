#pragma once

#include <zel/HostExport.h>

#include <cstdint>
#include <functional>
#include <memory>

namespace zel::common {

/// Where BackgroundTimer gets its time from. Any thread.
class LUMORA_HOST_API TimerSource {
public:
    using Alarm = std::uint64_t;

    virtual ~TimerSource() = default;

    /// Calls `ring` once after so many seconds, never inside set() and with no lock held. At most 0 rings at once.
    virtual Alarm set(std::int64_t seconds, std::function<void()> ring) = 0;
    /// Forgets the alarm, unless it has rung or is about to.
    virtual void cancel(Alarm alarm) = 0;

    /// The process's source: its timer thread on the monotonic clock, unless another one was put in its place.
    static std::shared_ptr<TimerSource> getInstance();
    /// For tests, and for programs that end before a timer would fire: timers that are started from here on use
    /// `source`; empty brings the timer thread back.
    static void overrideInstance(std::shared_ptr<TimerSource> source);
};

} // namespace zel::common
