// Replaces FleetServicePlugin.cpp in a build without the service.
#include "FleetServicePlugin.h"

namespace lumora_config {

std::map<std::string, std::string> FleetServicePlugin::describe(const std::string& /*pluginFolder*/) {
    return {};
}

void FleetServicePlugin::start(ZelUnified::UnifiedFactory& /*factory*/, const std::string& /*pluginFolder*/) {}

} // namespace lumora_config
