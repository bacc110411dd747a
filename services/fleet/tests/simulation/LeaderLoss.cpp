#include "LeaderLoss.h"

#include "EtcdSession.h"
#include "FleetScope.h"
#include "PatientWriter.h"
#include "SimulatedFleet.h"

#include <kyr/StringUtils.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <exception>
#include <functional>
#include <map>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

namespace fleet_test {

namespace {

constexpr const char* keyPrefix = "Key";
constexpr std::size_t keyCount = 100;
/// Divides the number of keys, so that each key has one writer and its values have an order.
constexpr std::size_t writerCount = 20;

std::string getKey(std::size_t number) {
    return keyPrefix + std::to_string(number % keyCount);
}

double secondsSince(Arrivals::Clock::time_point start) {
    return std::chrono::duration<double>(Arrivals::Clock::now() - start).count();
}

/// Makes one writer's share of the changes, and calls `advance` after each.
void write(const EtcdCluster& cluster, std::size_t writer, std::size_t changes, const std::function<void()>& advance) {
    PatientWriter session(cluster, writer);
    for (std::size_t number = writer; number < changes; number += writerCount) {
        session.put(getKey(number), std::to_string(number));
        advance();
    }
}

/// Makes all changes, and meanwhile kills the leader and starts it again.
void change(EtcdCluster& cluster, std::size_t changes) {
    std::mutex mutex;
    std::condition_variable advanced;
    std::size_t made = 0;
    std::exception_ptr failure;
    std::vector<std::jthread> writers;
    const auto waitFor = [&](std::size_t count) {
        std::unique_lock lock(mutex);
        advanced.wait(lock, [&] { return made >= count || failure; });
    };
    for (std::size_t writer = 0; writer < writerCount; ++writer) {
        writers.emplace_back([&, writer] {
            try {
                write(cluster, writer, changes, [&] {
                    const std::lock_guard lock(mutex);
                    ++made;
                    advanced.notify_all();
                });
            } catch (...) {
                const std::lock_guard lock(mutex);
                failure = std::current_exception();
                advanced.notify_all();
            }
        });
    }
    waitFor(changes / 3);
    const auto leader = cluster.findLeader();
    cluster.kill(leader);
    waitFor(changes * 2 / 3);
    cluster.restart(leader);
    writers.clear();
    if (failure) {
        std::rethrow_exception(failure);
    }
}

/// Returns what the cluster holds.
std::map<std::wstring, std::wstring> readLast(const EtcdCluster& cluster) {
    std::map<std::wstring, std::wstring> last;
    fleet::EtcdSession session(cluster.getAdministratorAccess());
    const auto scope = fleet::FleetScope::ofAll();
    for (const auto& pair : session.list({scope})) {
        const auto key = pair.key.substr(scope.prefix.size());
        if (key.starts_with(keyPrefix)) {
            last[KyrCoreUtils::toWideString(key)] = KyrCoreUtils::toWideString(pair.value);
        }
    }
    return last;
}

/// Counts the calls and the values that differ from the last ones.
void compare(const SimulatedFleet& fleet, const std::map<std::wstring, std::wstring>& last, LeaderLossResult& result) {
    fleet.forEach([&](std::size_t /*number*/, const SimulatedClient& client) {
        for (const auto& [key, value] : last) {
            if (client.getValue(key) != value) {
                ++result.wrong;
            }
        }
        for (const auto& observer : client.getObservers()) {
            result.calls += observer->countCalls();
            result.repeated += observer->countRepeated();
        }
    });
}

} // namespace

LeaderLossResult measureLeaderLoss(std::size_t clients, std::size_t changes) {
    EtcdCluster cluster(ClusterOptions{.members = 3});
    SimulatedFleet fleet(clients, cluster);
    fleet.forEach([](std::size_t /*number*/, SimulatedClient& client) {
        for (std::size_t key = 0; key < keyCount; ++key) {
            client.observe(KyrCoreUtils::toWideString(getKey(key)), nullptr);
        }
    });
    LeaderLossResult result{.clients = clients, .changes = changes};
    const auto began = Arrivals::Clock::now();
    change(cluster, changes);
    result.changeSeconds = secondsSince(began);
    const auto ended = Arrivals::Clock::now();
    fleet.passBarrier();
    result.settleSeconds = secondsSince(ended);
    const auto last = readLast(cluster);
    result.keys = last.size();
    if (result.keys < std::min(changes, keyCount)) {
        throw std::runtime_error("the cluster does not hold what was written");
    }
    compare(fleet, last, result);
    return result;
}

std::string findFault(const LeaderLossResult& result) {
    if (result.wrong == 0 && result.repeated == 0) {
        return {};
    }
    return "after the leader was killed, values that are not the last ones: " + std::to_string(result.wrong) +
           "; calls without a change: " + std::to_string(result.repeated);
}

void print(const LeaderLossResult& result) {
    std::puts("| clients | changes | keys | changes per second | s until all have the last | observer calls per client "
              "| calls without a change | wrong values |\n"
              "| ---: | ---: | ---: | ---: | ---: | ---: | ---: | ---: |");
    std::printf("| %zu | %zu | %zu | %.0f | %.2f | %.0f | %zu | %zu |\n", result.clients, result.changes, result.keys,
                static_cast<double>(result.changes) / result.changeSeconds, result.settleSeconds,
                static_cast<double>(result.calls) / static_cast<double>(result.clients), result.repeated, result.wrong);
}

} // namespace fleet_test
