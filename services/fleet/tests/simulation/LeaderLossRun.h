#pragma once

#include "SimulatedFleet.h"

#include <cstddef>
#include <functional>
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
    /// Makes all changes, and meanwhile kills the leader and starts it again.
    void change(EtcdCluster& cluster) const;
    /// Makes one writer's share of the changes, and calls `advance` after each.
    void write(const EtcdCluster& cluster, std::size_t writer, const std::function<void()>& advance) const;
    void readLast(const EtcdCluster& cluster);
    void compare(const SimulatedFleet& fleet);

    std::size_t clients;
    std::size_t changes;
    std::map<std::wstring, std::wstring> last; ///< What the cluster holds at the end.
    double changeSeconds = 0;
    double settleSeconds = 0; ///< From the last change until every client has it.
    std::size_t calls = 0;
    std::size_t repeated = 0;
    std::size_t wrong = 0;
};

} // namespace fleet_test
