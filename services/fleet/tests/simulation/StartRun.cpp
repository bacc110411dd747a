#include "StartRun.h"

#include "FleetHost.h"
#include "FleetScope.h"
#include "Percentile.h"
#include "ProgramRun.h"

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

} // namespace

StartRun::StartRun(std::size_t startCount) : starts(startCount) {
    EtcdCluster cluster;
    FleetHost::writeDefaults(profile.resources(), cluster.getAccess());
    cluster.put(fleet::FleetScope::ofAll().prefix + "Theme", lastValue);
    runClient({profile.root(), "with", lastValue});
    measure("answers");
    cluster.suspend(0);
    measure("is silent");
    cluster.kill(0);
    measure("is gone");
}

void StartRun::measure(const std::string& clusterState) {
    Row row{clusterState, {}, {}, {}, {}};
    for (std::size_t count = 0; count < starts; ++count) {
        row.without.push_back(start("without").time);
        const auto withPlugin = start("with");
        row.with.push_back(withPlugin.time);
        row.load.push_back(withPlugin.loadTime);
        row.background.push_back(start("background").time);
    }
    rows.push_back(std::move(row));
}

StartRun::Start StartRun::start(const std::string& mode) {
    std::istringstream output(runClient({profile.root(), mode}));
    Start measured;
    std::string value;
    output >> measured.time >> measured.loadTime >> value;
    if (!output || value != lastValue) {
        ++wrong;
    }
    return measured;
}

std::string StartRun::findFault() const {
    return wrong == 0 ? "" : "starts that have not answered with the last value: " + std::to_string(wrong);
}

void StartRun::print() const {
    std::puts("| the cluster | starts | without the plug-in, p50 ms | longest ms | with it, p50 ms "
              "| of that loading it, p50 ms | longest ms | loaded in the background, p50 ms | longest ms "
              "| with the last value |\n"
              "| --- | ---: | ---: | ---: | ---: | ---: | ---: | ---: | ---: | --- |");
    for (const auto& row : rows) {
        std::printf("| %s | %zu | %.1f | %.1f | %.1f | %.1f | %.1f | %.1f | %.1f | %s |\n", row.cluster.c_str(), starts,
                    getPercentile(row.without, 0.5), getPercentile(row.without, 1), getPercentile(row.with, 0.5),
                    getPercentile(row.load, 0.5), getPercentile(row.with, 1), getPercentile(row.background, 0.5),
                    getPercentile(row.background, 1), wrong == 0 ? "all" : "not all");
    }
}

} // namespace fleet_test
