#include "LeaderLossRun.h"

#include <kyr/StringUtils.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace fleet_test {

namespace {

constexpr std::size_t keyCount = 100;

std::string getKey(std::size_t number) {
    return "Key" + std::to_string(number % keyCount);
}

double secondsSince(Arrivals::Clock::time_point start) {
    return std::chrono::duration<double>(Arrivals::Clock::now() - start).count();
}

} // namespace

LeaderLossRun::LeaderLossRun(std::size_t clientCount, std::size_t changeCount)
    : clients(clientCount), changes(changeCount) {
    EtcdCluster cluster(ClusterOptions{3, false, false});
    SimulatedFleet fleet(clients, cluster);
    fleet.forEach([](std::size_t /*number*/, SimulatedClient& client) {
        for (std::size_t key = 0; key < keyCount; ++key) {
            client.observe(KyrCoreUtils::toWideString(getKey(key)), nullptr);
        }
    });
    const auto began = Arrivals::Clock::now();
    change(cluster, fleet);
    changeSeconds = secondsSince(began);
    const auto ended = Arrivals::Clock::now();
    fleet.passBarrier();
    settleSeconds = secondsSince(ended);
    compare(fleet);
}

void LeaderLossRun::change(EtcdCluster& cluster, SimulatedFleet& fleet) {
    std::size_t killed = 0;
    for (std::size_t number = 0; number < changes; ++number) {
        if (number == changes / 3) {
            killed = cluster.findLeader();
            cluster.kill(killed);
        } else if (number == changes * 2 / 3) {
            cluster.restart(killed);
        }
        const auto value = std::to_string(number);
        fleet.put(getKey(number), value);
        last[getKey(number)] = value;
    }
}

void LeaderLossRun::compare(SimulatedFleet& fleet) {
    fleet.forEach([this](std::size_t /*number*/, const SimulatedClient& client) {
        for (const auto& [key, value] : last) {
            if (client.getValue(KyrCoreUtils::toWideString(key)) != KyrCoreUtils::toWideString(value)) {
                ++wrong;
            }
        }
        for (const auto& observer : client.getObservers()) {
            calls += observer->countCalls();
            repeated += observer->countRepeated();
        }
    });
}

std::string LeaderLossRun::findFault() const {
    if (wrong == 0 && repeated == 0) {
        return {};
    }
    return "after the leader was killed, values that are not the last ones: " + std::to_string(wrong) +
           "; calls without a change: " + std::to_string(repeated);
}

void LeaderLossRun::print() const {
    std::puts("| clients | changes | keys | changes per second | s until all have the last | observer calls per client "
              "| of all calls repeated | wrong values |\n"
              "| ---: | ---: | ---: | ---: | ---: | ---: | ---: | ---: |");
    std::printf("| %zu | %zu | %zu | %.0f | %.2f | %.0f | %zu | %zu |\n", clients, changes, last.size(),
                static_cast<double>(changes) / changeSeconds, settleSeconds,
                static_cast<double>(calls) / static_cast<double>(clients), repeated, wrong);
}

} // namespace fleet_test
