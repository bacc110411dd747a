#pragma once

#include "EtcdCluster.h"
#include "ProcessorLoad.h"
#include "SimulatedFleet.h"

#include <cstddef>
#include <string>
#include <vector>

namespace fleet_test {

/// Measures the time from a write to the observers of all clients, and the load of the cluster.
class NotificationRun {
public:
    /// Throws std::runtime_error if an observer is not called.
    NotificationRun(std::size_t clientCount, std::size_t writeCount);

    /// Returns "" if each observer was called exactly once for each write, otherwise what went wrong.
    std::string findFault() const;

    static void printTimes(const std::vector<NotificationRun>& runs);
    static void printLoad(const std::vector<NotificationRun>& runs);

private:
    /// The load at one moment.
    struct Moment {
        ProcessorLoad members;
        ProcessorLoad clients;
    };

    /// The members' memory grows with the first writes, whether or not there are clients.
    void warmUp(EtcdCluster& cluster) const;
    static Moment measureLoad(const EtcdCluster& cluster);
    void measureWrites(EtcdCluster& cluster, Arrivals& arrivals);
    void countCalls(const SimulatedFleet& fleet);

    std::size_t clients;
    std::size_t writes;
    std::vector<double> times;        ///< From a write to an observer, in milliseconds.
    std::vector<double> controlTimes; ///< From the start of etcdctl to the last observer.
    double connectTime = 0;
    std::size_t calls = 0;
    std::size_t repeated = 0;
    std::size_t uneven = 0; ///< Clients whose observer was not called exactly once for each write.
    Moment idle;
    Moment connected;
    Moment written;
};

} // namespace fleet_test
