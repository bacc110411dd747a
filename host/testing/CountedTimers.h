#pragma once

#include <cstddef>
#include <memory>

namespace testing_host {

/// While it lives, every BackgroundTimer that is started runs on the process's real timer thread and is counted.
class CountedTimers {
public:
    enum class Wait { AsAsked, None };

    CountedTimers();
    ~CountedTimers();
    CountedTimers(const CountedTimers&) = delete;
    CountedTimers& operator=(const CountedTimers&) = delete;

    /// Whether timers that are started from here on wait at all.
    void setWait(Wait wait);
    /// Timers that are started, have not fired and were not stopped.
    std::size_t getPendingCount() const;
    /// Waits until the timer thread has done what it was asked for so far. False when it doesn't.
    bool settle() const;

private:
    class Source;
    const std::shared_ptr<Source> source;
};

} // namespace testing_host
