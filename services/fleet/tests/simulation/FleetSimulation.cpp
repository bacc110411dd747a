// Simulates many clients in one process against a cluster of three members on loopback addresses, and prints tables in
// Markdown: fleet_simulation [CLIENTS [WRITES [CHANGES [STARTS]]]]. Returns 1 if an observer was not called exactly
// once for each write, if a client has not the last value of each key after the leader was killed, or if a start
// without the cluster has not the last value. Times are printed and not checked.
#include "LeaderLossRun.h"
#include "NotificationRun.h"
#include "StartRun.h"

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

struct Numbers {
    std::vector<std::size_t> clients{10, 100, 1000};
    /// While the leader is killed. The members send each of 10,000 changes to each client, so 1,000 take very long.
    std::size_t clientsOfLoss = 100;
    std::size_t writes = 100;
    std::size_t changes = 10000;
    std::size_t starts = 21;
};

std::size_t parse(std::string_view text, std::size_t most) {
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || number == 0 || number > most) {
        throw std::runtime_error(
            "usage: fleet_simulation [CLIENTS, at most 3000 [WRITES, at most 10000 [CHANGES, at most "
            "100000 [STARTS, at most 1000]]]]");
    }
    return number;
}

Numbers parse(const std::vector<std::string>& arguments) {
    Numbers numbers;
    if (!arguments.empty()) {
        numbers.clientsOfLoss = parse(arguments[0], 3000);
        numbers.clients = {numbers.clientsOfLoss};
    }
    numbers.writes = arguments.size() > 1 ? parse(arguments[1], 10000) : numbers.writes;
    numbers.changes = arguments.size() > 2 ? parse(arguments[2], 100000) : numbers.changes;
    numbers.starts = arguments.size() > 3 ? parse(arguments[3], 1000) : numbers.starts;
    return numbers;
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

int simulate(const Numbers& numbers) {
    int faults = 0;
    std::vector<NotificationRun> runs;
    for (const auto clients : numbers.clients) {
        std::fprintf(stderr, "fleet_simulation: %zu clients, %zu writes\n", clients, numbers.writes);
        runs.emplace_back(clients, numbers.writes);
        faults += report(runs.back().findFault());
    }
    std::puts("Times:\n");
    NotificationRun::printTimes(runs);
    std::puts("\nLoad:\n");
    NotificationRun::printLoad(runs);
    std::fflush(stdout);
    std::fprintf(stderr, "fleet_simulation: %zu changes\n", numbers.changes);
    const LeaderLossRun loss(numbers.clientsOfLoss, numbers.changes);
    faults += report(loss.findFault());
    std::puts("\nLeader killed:\n");
    loss.print();
    std::fflush(stdout);
    std::fprintf(stderr, "fleet_simulation: %zu starts of each kind\n", numbers.starts);
    const StartRun starts(numbers.starts);
    faults += report(starts.findFault());
    std::puts("\nStart:\n");
    starts.print();
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
        return simulate(parse({argv + 1, argv + argc})) == 0 ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "fleet_simulation: %s\n", error.what());
        return 1;
    }
}
