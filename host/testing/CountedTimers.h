#pragma once

#include <cstddef>
#include <memory>

namespace testing_host {

/// While it exists, runs every started BackgroundTimer on the process's real timer thread and counts it.
class CountedTimers {
public:
    enum class Wait { AsAsked, None };

    CountedTimers();
    ~CountedTimers();
    CountedTimers(const CountedTimers&) = delete;
    CountedTimers& operator=(const CountedTimers&) = delete;

    /// Sets whether timers that are started later wait or fire immediately.
    void setWait(Wait wait);
    /// Returns the number of timers that were started, have not fired and were not stopped.
    std::size_t getPendingCount() const;
    /// Waits until the timer thread has handled all requests so far. Returns false on timeout.
    bool settle() const;

private:
    class Source;
    const std::shared_ptr<Source> source;
};

} // namespace testing_host
