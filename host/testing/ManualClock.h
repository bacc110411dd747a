#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace testing_host {

/// While it lives, every BackgroundTimer that is started follows this clock, which stands still until the test moves
/// it.
class ManualClock {
public:
    ManualClock();
    ~ManualClock();
    ManualClock(const ManualClock&) = delete;
    ManualClock& operator=(const ManualClock&) = delete;

    /// Moves the clock. What falls due on the way fires on the calling thread, in order of time and then of start; so
    /// does what these callbacks start, if it falls due. advance(0) fires the timers of at most 0 seconds.
    void advance(std::int64_t seconds);
    /// Timers that are started and have not fired.
    std::size_t getPendingCount() const;

private:
    class Source;
    const std::shared_ptr<Source> source;
};

} // namespace testing_host
