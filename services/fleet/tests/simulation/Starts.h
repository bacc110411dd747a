#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace fleet_test {

/// The milliseconds of the starts while the cluster is in one state.
struct StartTimes {
    std::string cluster;
    bool hasLastValue = false;   ///< The cluster has set the value that a start must answer with.
    std::vector<double> without; ///< Without the fleet's plug-in.
    std::vector<double> with;
    std::vector<double> load;        ///< The part of `with` that loading the plug-in took.
    std::vector<double> idleWithout; ///< Until the services thread has run what the start has posted.
    std::vector<double> idleWith;
    std::size_t wrong = 0; ///< Starts that have not answered with the last value.
};

/// The starts of single clients.
struct StartResult {
    std::size_t starts = 0; ///< In each state and of each kind.
    std::vector<StartTimes> states;
};

/// Measures the start of a client, in a process of its own each time, until it has answered, with and without the
/// fleet's plug-in, while the cluster answers, is silent, and is gone, and while none is configured. Throws
/// std::runtime_error if a client cannot be started.
StartResult measureStarts(std::size_t starts);

/// Returns "" if every start has answered with the last value, otherwise what went wrong.
std::string findFault(const StartResult& result);
void print(const StartResult& result);

} // namespace fleet_test
