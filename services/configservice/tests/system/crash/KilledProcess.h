#pragma once

#include "Report.h"

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <vector>

namespace crash_test {

/// A child of this process, from its beginning to its violent end.
class KilledProcess {
public:
    /// `work` runs in the child, with the end of a pipe to write reports to, until the child is killed. The caller has
    /// one thread only.
    explicit KilledProcess(const std::function<void(int)>& work);
    ~KilledProcess();
    KilledProcess(const KilledProcess&) = delete;
    KilledProcess& operator=(const KilledProcess&) = delete;

    /// Kills it that long after its report of this number, and gives all that it reported. Call once.
    std::vector<Report> killAfter(std::size_t reports, std::chrono::microseconds delay);
    /// Whether it was this kill that ended it.
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
