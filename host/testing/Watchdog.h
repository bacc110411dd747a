#pragma once

#include "Signal.h"

#include <chrono>
#include <thread>

namespace testing_host {

/// Ends the process if its scope exceeds a time limit, after it has written the stack of every thread to standard
/// error, so that a test that hangs is reported.
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
