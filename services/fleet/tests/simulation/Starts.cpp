#include "Starts.h"

#include "EtcdCluster.h"
#include "FleetHost.h"
#include "FleetScope.h"
#include "Percentile.h"
#include "ProgramRun.h"

#include <TemporaryProfile.h>

#include <cstdio>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace fleet_test {

namespace {

constexpr const char* lastValue = "last";

/// Runs the program that starts one client. Returns what it prints.
std::string runClient(const std::vector<std::string>& arguments) {
    const auto result = runProgram(START_PROGRAM, arguments);
    if (result.code != 0) {
        throw std::runtime_error("a client does not start: " + result.output);
    }
    return result.output;
}

/// What one start has printed.
struct Start {
    double time = 0; ///< Until the first answer, in milliseconds.
    double loadTime = 0;
    double idleTime = 0;
    std::string value;
};

Start start(const std::string& profile, const std::string& mode) {
    const auto output = runClient({profile, mode});
    std::istringstream words(output);
    Start measured;
    words >> measured.time >> measured.loadTime >> measured.idleTime >> measured.value;
    if (!words) {
        throw std::runtime_error("a client prints no times: " + output);
    }
    return measured;
}

/// Measures the starts while the cluster is in one state. `value` is the one that the cluster has set, "" without a
/// cluster.
void measure(const std::string& profile, const std::string& clusterState, const std::string& value,
             StartResult& result) {
    StartTimes times;
    times.cluster = clusterState;
    times.hasLastValue = !value.empty();
    for (std::size_t count = 0; count < result.starts; ++count) {
        const auto without = start(profile, "without");
        const auto with = start(profile, "with");
        times.without.push_back(without.time);
        times.with.push_back(with.time);
        times.load.push_back(with.loadTime);
        times.idleWithout.push_back(without.idleTime);
        times.idleWith.push_back(with.idleTime);
        for (const auto* measured : {&without, &with}) {
            times.wrong += times.hasLastValue && measured->value != value ? 1 : 0;
        }
    }
    result.states.push_back(std::move(times));
}

} // namespace

StartResult measureStarts(std::size_t starts) {
    StartResult result;
    result.starts = starts;
    const testing_host::TemporaryProfile profile;
    EtcdCluster cluster;
    FleetHost::writeDefaults(profile.resources(), cluster.getAccess());
    cluster.put(fleet::FleetScope::ofAll().prefix + "Theme", lastValue);
    runClient({profile.root(), "with", lastValue});
    measure(profile.root(), "answers", lastValue, result);
    cluster.suspend(0);
    measure(profile.root(), "is silent", lastValue, result);
    cluster.kill(0);
    measure(profile.root(), "is gone", lastValue, result);
    const testing_host::TemporaryProfile unconfigured;
    FleetHost::writeDefaults(unconfigured.resources(), {});
    measure(unconfigured.root(), "none is configured", "", result);
    return result;
}

std::string findFault(const StartResult& result) {
    std::size_t wrong = 0;
    for (const auto& times : result.states) {
        wrong += times.wrong;
    }
    return wrong == 0 ? "" : "starts that have not answered with the last value: " + std::to_string(wrong);
}

void print(const StartResult& result) {
    std::puts("| the cluster | starts | without the plug-in, least ms | p50 ms | with it, least ms | p50 ms "
              "| difference of the least, ms | least for loading it, ms | difference until the thread is idle, ms "
              "| with the last value |\n"
              "| --- | ---: | ---: | ---: | ---: | ---: | ---: | ---: | ---: | --- |");
    for (const auto& times : result.states) {
        const auto* const value = !times.hasLastValue ? "none is set" : times.wrong == 0 ? "all" : "not all";
        const auto without = getPercentile(times.without, 0);
        const auto with = getPercentile(times.with, 0);
        const auto idle = getPercentile(times.idleWith, 0) - getPercentile(times.idleWithout, 0);
        std::printf("| %s | %zu | %.2f | %.1f | %.2f | %.1f | %+.2f | %.2f | %+.2f | %s |\n", times.cluster.c_str(),
                    result.starts, without, getPercentile(times.without, 0.5), with, getPercentile(times.with, 0.5),
                    with - without, getPercentile(times.load, 0), idle, value);
    }
}

} // namespace fleet_test
