#include "NotificationRun.h"

#include "FleetScope.h"
#include "Percentile.h"

#include <kyr/StringUtils.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <tuple>

namespace fleet_test {

namespace {

constexpr const char* measuredKey = "Measured";
constexpr std::size_t controlWrites = 5;
constexpr double streamsPerClient = 3;

std::string getPath() {
    return fleet::FleetScope::ofAll().prefix + measuredKey;
}

double toMilliseconds(Arrivals::Clock::duration time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

} // namespace

NotificationRun::NotificationRun(std::size_t clientCount, std::size_t writeCount)
    : clients(clientCount), writes(writeCount) {
    EtcdCluster cluster(ClusterOptions{.members = 3});
    warmUp(cluster);
    idle = measureLoad(cluster);
    Arrivals arrivals(clients); // destroyed after the observers
    const auto began = Arrivals::Clock::now();
    SimulatedFleet fleet(clients, cluster);
    connectTime = toMilliseconds(Arrivals::Clock::now() - began);
    fleet.forEach([&](std::size_t number, SimulatedClient& client) {
        client.observe(KyrCoreUtils::toWideString(measuredKey),
                       [&arrivals, number](const std::wstring& value) { arrivals.receive(number, value); });
    });
    connected = measureLoad(cluster);
    measureWrites(cluster, arrivals);
    fleet.passBarrier();
    countCalls(fleet);
}

void NotificationRun::warmUp(EtcdCluster& cluster) const {
    for (std::size_t write = 0; write < writes; ++write) {
        cluster.put(getPath(), "warm-up " + std::to_string(write));
    }
}

NotificationRun::Moment NotificationRun::measureLoad(const EtcdCluster& cluster) {
    return {ProcessorLoad::ofMembers(cluster), ProcessorLoad::ofThisProcess()};
}

void NotificationRun::measureWrites(EtcdCluster& cluster, Arrivals& arrivals) {
    const auto key = getPath();
    for (std::size_t write = 0; write < writes; ++write) {
        const auto value = "write " + std::to_string(write);
        std::ranges::transform(arrivals.measure(KyrCoreUtils::toWideString(value), [&] { cluster.put(key, value); }),
                               std::back_inserter(times), toMilliseconds);
    }
    written = measureLoad(cluster);
    for (std::size_t write = 0; write < controlWrites; ++write) {
        const auto value = "etcdctl " + std::to_string(write);
        const auto arrived = arrivals.measure(KyrCoreUtils::toWideString(value), [&] {
            cluster.control({"put", key, value});
        });
        controlTimes.push_back(toMilliseconds(*std::ranges::max_element(arrived)));
    }
}

void NotificationRun::countCalls(const SimulatedFleet& fleet) {
    fleet.forEach([this](std::size_t /*number*/, const SimulatedClient& client) {
        const auto& observer = *client.getObservers().back();
        calls += observer.countCalls();
        repeated += observer.countRepeated();
        if (observer.countCalls() != writes + controlWrites) {
            ++uneven;
        }
    });
}

std::string NotificationRun::findFault() const {
    if (uneven == 0 && repeated == 0) {
        return {};
    }
    return std::to_string(uneven) + " of " + std::to_string(clients) +
           " observers were not called exactly once for each write; calls without a change: " +
           std::to_string(repeated);
}

void NotificationRun::printTimes(const std::vector<NotificationRun>& runs) {
    std::puts(
        "| clients | writes | p50 ms | p99 ms | longest ms | etcdctl put ms | observer calls | of them repeated |\n"
        "| ---: | ---: | ---: | ---: | ---: | ---: | ---: | ---: |");
    for (const auto& run : runs) {
        std::printf("| %zu | %zu | %.1f | %.1f | %.1f | %.0f | %zu | %zu |\n", run.clients, run.writes,
                    getPercentile(run.times, 0.5), getPercentile(run.times, 0.99), getPercentile(run.times, 1),
                    getPercentile(run.controlTimes, 1), run.calls, run.repeated);
    }
}

void NotificationRun::printLoad(const std::vector<NotificationRun>& runs) {
    std::puts("| clients | connected after ms | members' CPU ms to connect | members' CPU ms per write "
              "| clients' CPU ms per write | members' MB without clients | members' MB | kB per stream "
              "| clients' kB per client |\n"
              "| ---: | ---: | ---: | ---: | ---: | ---: | ---: | ---: | ---: |");
    for (const auto& run : runs) {
        const auto perWrite = [&](double before, double after) {
            return (after - before) / static_cast<double>(run.writes);
        };
        const auto perClient = [&](double before, double after) {
            return (after - before) * 1000 / static_cast<double>(run.clients);
        };
        const auto& [idle, connected, written] = std::tie(run.idle, run.connected, run.written);
        std::printf("| %zu | %.0f | %.0f | %.2f | %.2f | %.0f | %.0f | %.1f | %.0f |\n", run.clients, run.connectTime,
                    connected.members.processorMilliseconds - idle.members.processorMilliseconds,
                    perWrite(connected.members.processorMilliseconds, written.members.processorMilliseconds),
                    perWrite(connected.clients.processorMilliseconds, written.clients.processorMilliseconds),
                    idle.members.residentMegabytes, written.members.residentMegabytes,
                    perClient(idle.members.residentMegabytes, written.members.residentMegabytes) / streamsPerClient,
                    perClient(idle.clients.residentMegabytes, connected.clients.residentMegabytes));
    }
}

} // namespace fleet_test
