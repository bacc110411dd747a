#include "ProcessorLoad.h"

#include <unistd.h>

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace fleet_test {

namespace {

void add(ProcessorLoad& load, const std::string& process) {
    std::ifstream file("/proc/" + process + "/stat");
    const std::string text((std::istreambuf_iterator<char>(file)), {});
    // The second field, the name of the program, may contain spaces.
    std::istringstream fields(text.substr(text.rfind(')') + 2));
    const std::vector<std::string> values((std::istream_iterator<std::string>(fields)), {});
    // Counted from the state, the third field: user and system time, then resident pages.
    const auto ticks = std::stoull(values.at(11)) + std::stoull(values.at(12));
    load.processorMilliseconds += static_cast<double>(ticks) * 1000 / static_cast<double>(::sysconf(_SC_CLK_TCK));
    load.residentMegabytes +=
        static_cast<double>(std::stoull(values.at(21))) * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1e6;
}

} // namespace

ProcessorLoad ProcessorLoad::ofMembers(const EtcdCluster& cluster) {
    ProcessorLoad load;
    for (std::size_t member = 0; member < cluster.size(); ++member) {
        add(load, std::to_string(cluster.getProcess(member)));
    }
    return load;
}

ProcessorLoad ProcessorLoad::ofThisProcess() {
    ProcessorLoad load;
    add(load, "self");
    return load;
}

} // namespace fleet_test
