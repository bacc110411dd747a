#include "Notifications.h"

#include "FleetScope.h"
#include "Percentile.h"
#include "SimulatedFleet.h"

#include <kyr/StringUtils.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <tuple>

namespace fleet_test {

namespace {

constexpr const char* measuredKey = "Measured";
constexpr std::size_t controlWrites = 5;
constexpr double streamsPerClient = 3;
constexpr double longestControlTime = 1000; // milliseconds

std::string getPath() {
    return fleet::FleetScope::ofAll().prefix + measuredKey;
}

double toMilliseconds(Arrivals::Clock::duration time) {
    return std::chrono::duration<double, std::milli>(time).count();
}

/// Writes `writes` times without clients, because the members' memory grows with the first writes.
void warmUp(EtcdCluster& cluster, std::size_t writes) {
    for (std::size_t write = 0; write < writes; ++write) {
        cluster.put(getPath(), "warm-up " + std::to_string(write));
    }
}

Load measureLoad(const EtcdCluster& cluster) {
    return {ProcessorLoad::ofMembers(cluster), ProcessorLoad::ofThisProcess()};
}

void measureWrites(EtcdCluster& cluster, Arrivals& arrivals, NotificationResult& result) {
    const auto key = getPath();
    for (std::size_t write = 0; write < result.writes; ++write) {
        const auto value = "write " + std::to_string(write);
        std::ranges::transform(arrivals.measure(KyrCoreUtils::toWideString(value), [&] { cluster.put(key, value); }),
                               std::back_inserter(result.times), toMilliseconds);
    }
    result.written = measureLoad(cluster);
    for (std::size_t write = 0; write < controlWrites; ++write) {
        const auto value = "etcdctl " + std::to_string(write);
        const auto arrived = arrivals.measure(KyrCoreUtils::toWideString(value), [&] {
            cluster.control({"put", key, value});
        });
        result.controlTimes.push_back(toMilliseconds(*std::ranges::max_element(arrived)));
    }
}

void countCalls(const SimulatedFleet& fleet, NotificationResult& result) {
    fleet.forEach([&result](std::size_t /*number*/, const SimulatedClient& client) {
        const auto& observer = *client.getObservers().back();
        result.calls += observer.countCalls();
        result.repeated += observer.countRepeated();
        if (observer.countCalls() != result.writes + controlWrites) {
            ++result.uneven;
        }
    });
}

double getLongestControlTime(const NotificationResult& result) {
    return getPercentile(result.controlTimes, 1);
}

} // namespace

NotificationResult measureNotifications(std::size_t clients, std::size_t writes) {
    NotificationResult result;
    result.clients = clients;
    result.writes = writes;
    EtcdCluster cluster(ClusterOptions{.members = 3});
    warmUp(cluster, writes);
    result.idle = measureLoad(cluster);
    Arrivals arrivals(clients); // destroyed after the observers
    const auto began = Arrivals::Clock::now();
    SimulatedFleet fleet(clients, cluster);
    result.connectTime = toMilliseconds(Arrivals::Clock::now() - began);
    fleet.forEach([&](std::size_t number, SimulatedClient& client) {
        client.observe(KyrCoreUtils::toWideString(measuredKey),
                       [&arrivals, number](const std::wstring& value) { arrivals.receive(number, value); });
    });
    result.connected = measureLoad(cluster);
    measureWrites(cluster, arrivals, result);
    fleet.passBarrier();
    countCalls(fleet, result);
    return result;
}

std::string findFault(const NotificationResult& result) {
    if (result.uneven == 0 && result.repeated == 0) {
        return {};
    }
    return std::to_string(result.uneven) + " of " + std::to_string(result.clients) +
           " observers were not called exactly once for each write; calls without a change: " +
           std::to_string(result.repeated);
}

std::string findDelay(const NotificationResult& result) {
    const auto longest = getLongestControlTime(result);
    return longest <= longestControlTime
               ? ""
               : "the last of " + std::to_string(result.clients) + " observers was called " +
                     std::to_string(std::lround(longest)) + " ms after the start of etcdctl, not within a second";
}

void printTimes(const std::vector<NotificationResult>& results) {
    std::puts("| clients | writes | p50 ms | p99 ms | longest ms | etcdctl put ms | within 1 s | observer calls "
              "| calls without a change |\n"
              "| ---: | ---: | ---: | ---: | ---: | ---: | --- | ---: | ---: |");
    for (const auto& result : results) {
        std::printf("| %zu | %zu | %.1f | %.1f | %.1f | %.0f | %s | %zu | %zu |\n", result.clients, result.writes,
                    getPercentile(result.times, 0.5), getPercentile(result.times, 0.99), getPercentile(result.times, 1),
                    getLongestControlTime(result), findDelay(result).empty() ? "yes" : "no", result.calls,
                    result.repeated);
    }
}

void printLoad(const std::vector<NotificationResult>& results) {
    std::puts("| clients | connected after ms | members' CPU ms to connect | members' CPU ms per write "
              "| clients' CPU ms per write | members' MB without clients | members' MB | kB per stream "
              "| clients' kB per client |\n"
              "| ---: | ---: | ---: | ---: | ---: | ---: | ---: | ---: | ---: |");
    for (const auto& result : results) {
        const auto perWrite = [&](double before, double after) {
            return (after - before) / static_cast<double>(result.writes);
        };
        const auto perClient = [&](double before, double after) {
            return (after - before) * 1000 / static_cast<double>(result.clients);
        };
        const auto& [idle, connected, written] = std::tie(result.idle, result.connected, result.written);
        std::printf("| %zu | %.0f | %.0f | %.2f | %.2f | %.0f | %.0f | %.1f | %.0f |\n", result.clients,
                    result.connectTime, connected.members.processorMilliseconds - idle.members.processorMilliseconds,
                    perWrite(connected.members.processorMilliseconds, written.members.processorMilliseconds),
                    perWrite(connected.clients.processorMilliseconds, written.clients.processorMilliseconds),
                    idle.members.residentMegabytes, written.members.residentMegabytes,
                    perClient(idle.members.residentMegabytes, written.members.residentMegabytes) / streamsPerClient,
                    perClient(idle.clients.residentMegabytes, connected.clients.residentMegabytes));
    }
}

} // namespace fleet_test
