#include "LeaderLossRun.h"

#include "EtcdSession.h"
#include "FleetScope.h"
#include "PatientWriter.h"

#include <kyr/StringUtils.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <exception>
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

} // namespace

LeaderLossRun::LeaderLossRun(std::size_t clientCount, std::size_t changeCount)
    : clients(clientCount), changes(changeCount) {
    EtcdCluster cluster(ClusterOptions{.members = 3});
    SimulatedFleet fleet(clients, cluster);
    fleet.forEach([](std::size_t /*number*/, SimulatedClient& client) {
        for (std::size_t key = 0; key < keyCount; ++key) {
            client.observe(KyrCoreUtils::toWideString(getKey(key)), nullptr);
        }
    });
    const auto began = Arrivals::Clock::now();
    change(cluster);
    changeSeconds = secondsSince(began);
    const auto ended = Arrivals::Clock::now();
    fleet.passBarrier();
    settleSeconds = secondsSince(ended);
    readLast(cluster);
    compare(fleet);
}

void LeaderLossRun::change(EtcdCluster& cluster) const {
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
                write(cluster, writer, [&] {
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

void LeaderLossRun::write(const EtcdCluster& cluster, std::size_t writer, const std::function<void()>& advance) const {
    PatientWriter session(cluster, writer);
    for (std::size_t number = writer; number < changes; number += writerCount) {
        session.put(getKey(number), std::to_string(number));
        advance();
    }
}

void LeaderLossRun::readLast(const EtcdCluster& cluster) {
    fleet::EtcdSession session(cluster.getAdministratorAccess());
    const auto scope = fleet::FleetScope::ofAll();
    for (const auto& pair : session.list({scope})) {
        const auto key = pair.key.substr(scope.prefix.size());
        if (key.starts_with(keyPrefix)) {
            last[KyrCoreUtils::toWideString(key)] = KyrCoreUtils::toWideString(pair.value);
        }
    }
    if (last.size() < std::min(changes, keyCount)) {
        throw std::runtime_error("the cluster does not hold what was written");
    }
}

void LeaderLossRun::compare(const SimulatedFleet& fleet) {
    fleet.forEach([this](std::size_t /*number*/, const SimulatedClient& client) {
        for (const auto& [key, value] : last) {
            if (client.getValue(key) != value) {
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
