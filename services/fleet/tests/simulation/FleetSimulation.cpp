// Simulates many clients in one process against a cluster of three members on loopback addresses, and prints tables in
// Markdown: fleet_simulation [--quiet-machine] [CLIENTS [WRITES [CHANGES [STARTS]]]]. Returns 1 if an observer was not
// called exactly once for each write, if a client has not the last value of each key after the leader was killed, or if
// a start without the cluster has not the last value. With --quiet-machine, which promises that the machine does
// nothing else, also if the last observer was not called within a second of a write with etcdctl.
#include "EtcdCluster.h"
#include "LeaderLoss.h"
#include "Notifications.h"
#include "Starts.h"

#include <sys/resource.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace fleet_test;

struct Options {
    std::vector<std::size_t> clients{10, 100, 1000};
    /// While the leader is killed. The members send each of 10,000 changes to each client, so 1,000 take very long.
    std::size_t clientsOfLoss = 100;
    std::size_t writes = 100;
    std::size_t changes = 10000;
    std::size_t starts = 100;
    bool quietMachine = false;
};

std::size_t parseNumber(std::string_view text, std::size_t most) {
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number == 0 || number > most) {
        throw std::runtime_error(
            "usage: fleet_simulation [--quiet-machine] [CLIENTS, at most 3000 [WRITES, at most 10000 [CHANGES, at most "
            "100000 [STARTS, at most 1000]]]]");
    }
    return number;
}

Options parseArguments(std::vector<std::string> arguments) {
    Options options;
    if (!arguments.empty() && arguments.front() == "--quiet-machine") {
        options.quietMachine = true;
        arguments.erase(arguments.begin());
    }
    if (!arguments.empty()) {
        options.clientsOfLoss = parseNumber(arguments[0], 3000);
        options.clients = {options.clientsOfLoss};
    }
    options.writes = arguments.size() > 1 ? parseNumber(arguments[1], 10000) : options.writes;
    options.changes = arguments.size() > 2 ? parseNumber(arguments[2], 100000) : options.changes;
    options.starts = arguments.size() > 3 ? parseNumber(arguments[3], 1000) : options.starts;
    return options;
}

/// Each client needs about five descriptors here: connection, probe, and those of its thread. The members inherit the
/// limit.
void raiseDescriptorLimit() {
    rlimit limit{};
    ::getrlimit(RLIMIT_NOFILE, &limit);
    limit.rlim_cur = limit.rlim_max;
    ::setrlimit(RLIMIT_NOFILE, &limit);
}

/// A real client waits for a disk of its own; a thousand on one disk would wait for each other.
void keepProfilesInMemory() {
    if (::access("/dev/shm", W_OK) == 0) {
        ::setenv("TMPDIR", "/dev/shm", 1);
    }
}

/// Returns the number of faults.
int report(const std::string& fault) {
    if (fault.empty()) {
        return 0;
    }
    std::fprintf(stderr, "fleet_simulation: %s\n", fault.c_str());
    return 1;
}

int simulate(const Options& options) {
    int faults = 0;
    std::vector<NotificationResult> results;
    for (const auto clients : options.clients) {
        std::fprintf(stderr, "fleet_simulation: %zu clients, %zu writes\n", clients, options.writes);
        results.push_back(measureNotifications(clients, options.writes));
        faults += report(findFault(results.back()));
        faults += options.quietMachine ? report(findDelay(results.back())) : 0;
    }
    std::puts("Times:\n");
    printTimes(results);
    std::puts("\nLoad:\n");
    printLoad(results);
    std::fflush(stdout);
    std::fprintf(stderr, "fleet_simulation: %zu changes\n", options.changes);
    const auto loss = measureLeaderLoss(options.clientsOfLoss, options.changes);
    faults += report(findFault(loss));
    std::puts("\nLeader killed:\n");
    print(loss);
    std::fflush(stdout);
    std::fprintf(stderr, "fleet_simulation: %zu starts of each kind\n", options.starts);
    const auto starts = measureStarts(options.starts);
    faults += report(findFault(starts));
    std::puts("\nStart:\n");
    print(starts);
    return faults;
}

} // namespace

int main(int argc, char** argv) {
    try {
        if (const auto reason = EtcdCluster::whyUnavailable(); !reason.empty()) {
            throw std::runtime_error(reason);
        }
        raiseDescriptorLimit();
        keepProfilesInMemory();
        return simulate(parseArguments({argv + 1, argv + argc})) == 0 ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fleet_simulation: %s\n", error.what());
        return 1;
    }
}
