#pragma once

#include <cstddef>
#include <string>

namespace fleet_test {

/// What the clients have after the leader was killed during a stream of changes.
struct LeaderLossResult {
    std::size_t clients = 0;
    std::size_t changes = 0;
    std::size_t keys = 0;
    double changeSeconds = 0;
    double settleSeconds = 0; ///< From the last change until every client has it.
    std::size_t calls = 0;    ///< Of observers.
    std::size_t repeated = 0; ///< Calls without a change.
    std::size_t wrong = 0;    ///< Values that are not the last ones.
};

/// Kills the leader during a stream of changes, starts it again, and compares what every client has at the end. Throws
/// std::runtime_error if the changes cannot be made or do not arrive.
LeaderLossResult measureLeaderLoss(std::size_t clients, std::size_t changes);

/// Returns "" if every client has the last value of every key and no observer was called without a change, otherwise
/// what went wrong.
std::string findFault(const LeaderLossResult& result);
void print(const LeaderLossResult& result);

} // namespace fleet_test
