#pragma once

#include "ProcessorLoad.h"

#include <cstddef>
#include <string>
#include <vector>

namespace fleet_test {

/// The load at one moment.
struct Load {
    ProcessorLoad members;
    ProcessorLoad clients;
};

/// The times from a write to the observers of all clients, and the load of the cluster.
struct NotificationResult {
    std::size_t clients = 0;
    std::size_t writes = 0;
    std::vector<double> times;        ///< From a write to an observer, in milliseconds.
    std::vector<double> controlTimes; ///< From the start of etcdctl to the last observer.
    double connectTime = 0;
    std::size_t calls = 0;    ///< Of observers.
    std::size_t repeated = 0; ///< Calls without a change.
    std::size_t uneven = 0;   ///< Clients whose observer was not called exactly once for each write.
    Load idle;
    Load connected;
    Load written;
};

/// Throws std::runtime_error if an observer is not called.
NotificationResult measureNotifications(std::size_t clients, std::size_t writes);

/// Returns "" if each observer was called exactly once for each write, otherwise what went wrong.
std::string findFault(const NotificationResult& result);
/// Returns "" if the last observer was called within a second of each start of etcdctl, otherwise what went wrong. Only
/// a machine that does nothing else can promise that.
std::string findDelay(const NotificationResult& result);

void printTimes(const std::vector<NotificationResult>& results);
void printLoad(const std::vector<NotificationResult>& results);

} // namespace fleet_test
