#pragma once

#include "EtcdCluster.h"

#include <TemporaryProfile.h>

#include <string>
#include <vector>

namespace fleet_test {

/// Measures the start of a client, in a process of its own each time, until it has answered: without the fleet's
/// plug-in and with it, while the cluster answers, is silent, and is gone.
class StartRun {
public:
    /// Throws std::runtime_error if a client cannot be started.
    explicit StartRun(std::size_t startCount);

    /// Returns "" if every start has answered with the last value, otherwise what went wrong.
    std::string findFault() const;
    void print() const;

private:
    /// The starts while the cluster is in one state, in milliseconds.
    struct Row {
        std::string cluster;
        std::vector<double> without;
        std::vector<double> with;
    };

    void measure(const std::string& clusterState);
    double start(const std::string& mode);

    std::size_t starts;
    const testing_host::TemporaryProfile profile;
    std::vector<Row> rows;
    std::size_t wrong = 0;
};

} // namespace fleet_test
