#pragma once

#include <chrono>

namespace testing_host {

/// Shifts the wall clock of this process until the object is destroyed. Does not affect other processes, the monotonic
/// clock or the times that the file system writes. It replaces the C library's time functions in a program that links
/// `jumping_clock`: each call is a system call.
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
