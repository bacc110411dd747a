#pragma once

#include "EtcdCluster.h"

namespace fleet_test {

/// Processor time and memory so far, of the members of a cluster or of this process.
struct ProcessorLoad {
    static ProcessorLoad ofMembers(const EtcdCluster& cluster);
    static ProcessorLoad ofThisProcess();

    double processorMilliseconds = 0;
    double residentMegabytes = 0;
};

} // namespace fleet_test
