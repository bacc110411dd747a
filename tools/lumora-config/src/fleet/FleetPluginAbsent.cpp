// Replaces FleetPlugin.cpp and FleetCommands.cpp in a build without the service.
#include "FleetCommands.h"
#include "output/Failure.h"

namespace lumora_config {

void runFleetCommand(const CommandLine& /*line*/, Printer& /*printer*/) {
    throw Failure(ExitCode::Environment, "this program was built without the fleet service");
}

} // namespace lumora_config
