#pragma once

#include "SimulatedFleet.h"

#include <cstddef>
#include <map>
#include <string>

namespace fleet_test {

/// Kills the leader during a stream of changes, starts it again, and compares what every client has at the end.
class LeaderLossRun {
public:
    LeaderLossRun(std::size_t clientCount, std::size_t changeCount);

    /// Returns "" if every client has the last value of every key and no observer was called without a change,
    /// otherwise what went wrong.
    std::string findFault() const;
    void print() const;

private:
    void change(EtcdCluster& cluster, SimulatedFleet& fleet);
    void compare(SimulatedFleet& fleet);

    std::size_t clients;
    std::size_t changes;
    std::map<std::string, std::string> last; ///< The last value of each key.
    double changeSeconds = 0;
    double settleSeconds = 0; ///< From the last change until every client has it.
    std::size_t calls = 0;
    std::size_t repeated = 0;
    std::size_t wrong = 0;
};

} // namespace fleet_test
