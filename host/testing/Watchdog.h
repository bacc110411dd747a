#pragma once

#include "Signal.h"

#include <chrono>
#include <thread>

namespace testing_host {

/// Ends the process when its scope takes too long, after writing the stack of every thread to standard error: a hang
/// becomes a report.
class Watchdog {
public:
    explicit Watchdog(std::chrono::seconds limit = std::chrono::seconds(60));
    ~Watchdog();
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

private:
    Signal done;
    std::thread thread;
};

} // namespace testing_host
