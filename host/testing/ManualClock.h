#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace testing_host {

/// While it exists, every started BackgroundTimer uses this clock, which moves only by advance().
class ManualClock {
public:
    ManualClock();
    ~ManualClock();
    ManualClock(const ManualClock&) = delete;
    ManualClock& operator=(const ManualClock&) = delete;

    /// Moves the clock. Fires each timer that becomes due on the calling thread, in order of time and then of start,
    /// including timers that these callbacks start. advance(0) fires the timers of at most 0 seconds.
    void advance(std::int64_t seconds);
    /// Returns the number of timers that were started and have not fired.
    std::size_t getPendingCount() const;

private:
    class Source;
    const std::shared_ptr<Source> source;
};

} // namespace testing_host
