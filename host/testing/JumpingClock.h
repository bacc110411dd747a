#pragma once

#include <chrono>

namespace testing_host {

/// Sets the wall clock of this process, and of nobody else, until its life ends. The monotonic clock goes on as it is,
/// and so do the times that the file system writes. A program that uses it has its questions for the time answered
/// here.
class JumpingClock {
public:
    JumpingClock() = default;
    ~JumpingClock();
    JumpingClock(const JumpingClock&) = delete;
    JumpingClock& operator=(const JumpingClock&) = delete;

    /// Forward, or back for a negative time.
    void jump(std::chrono::seconds by);
};

} // namespace testing_host
