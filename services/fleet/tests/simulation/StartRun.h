#pragma once

#include "EtcdCluster.h"

#include <TemporaryProfile.h>

#include <string>
#include <vector>

namespace fleet_test {

/// Measures the start of a client, in a process of its own each time, until it has answered: without the fleet's
/// plug-in, with it, and with it loaded in the background, while the cluster answers, is silent, and is gone.
class StartRun {
public:
    /// Throws std::runtime_error if a client cannot be started.
    explicit StartRun(std::size_t startCount);

    /// Returns "" if every start has answered with the last value, otherwise what went wrong.
    std::string findFault() const;
    void print() const;

private:
    struct Start {
        double time = 0;     ///< Until the first answer, in milliseconds.
        double loadTime = 0; ///< The part of it that loading the plug-in took.
    };

    /// The times of the starts while the cluster is in one state.
    struct Row {
        std::string cluster;
        std::vector<double> without;
        std::vector<double> with;
        std::vector<double> load;
        std::vector<double> background;
    };

    void measure(const std::string& clusterState);
    Start start(const std::string& mode);

    std::size_t starts;
    const testing_host::TemporaryProfile profile;
    std::vector<Row> rows;
    std::size_t wrong = 0;
};

} // namespace fleet_test
