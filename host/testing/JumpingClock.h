#pragma once

#include <chrono>

namespace testing_host {

/// Shifts the wall clock of this process until the object is destroyed. Does not affect other processes, the monotonic
/// clock or the times that the file system writes. It replaces the time functions of the library for a program that
/// links it.
class JumpingClock {
public:
    JumpingClock() = default;
    ~JumpingClock();
    JumpingClock(const JumpingClock&) = delete;
    JumpingClock& operator=(const JumpingClock&) = delete;

    /// Moves the clock forward, or back for a negative duration.
    void jump(std::chrono::seconds by);
};

} // namespace testing_host
