#pragma once

#include "Report.h"

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <vector>

namespace crash_test {

/// A child process that is killed at a chosen moment.
class KilledProcess {
public:
    /// Runs `work` in the child until it is killed, with the writing end of a pipe for reports. The caller must have
    /// one thread only.
    explicit KilledProcess(const std::function<void(int)>& work);
    ~KilledProcess();
    KilledProcess(const KilledProcess&) = delete;
    KilledProcess& operator=(const KilledProcess&) = delete;

    /// Kills the child that long after its report of this number. Returns all reports. Call once.
    std::vector<Report> killAfter(std::size_t reports, std::chrono::microseconds delay);
    /// Returns true if this kill ended the child.
    bool wasKilled() const { return killed; }

private:
    bool receive();
    void receiveUntil(std::chrono::steady_clock::time_point deadline);
    void end();

    pid_t child = -1;
    int pipeEnd = -1;
    bool killed = false;
    std::vector<Report> received;
};

} // namespace crash_test
