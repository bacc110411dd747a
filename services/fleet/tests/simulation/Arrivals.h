#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

namespace fleet_test {

/// Measures how long each client's observer takes to receive a value. Any thread.
class Arrivals {
public:
    using Clock = std::chrono::steady_clock;

    explicit Arrivals(std::size_t clientCount) : times(clientCount), hasArrived(clientCount) {}

    /// Calls `write` and waits until every client has received the value. Returns the time from before the call for
    /// each client. Throws std::runtime_error if a client does not receive it.
    std::vector<Clock::duration> measure(const std::wstring& value, const std::function<void()>& write);

    /// The client's observer was called with this value.
    void receive(std::size_t client, const std::wstring& value);

private:
    std::mutex mutex;
    std::condition_variable complete;
    std::wstring expected;
    Clock::time_point start;
    std::vector<Clock::duration> times;
    std::vector<bool> hasArrived;
    std::size_t missing = 0;
};

} // namespace fleet_test
