#include "FleetServicePlugin.h"

#include <unified/TypeName.h>

#include <FleetService.h>

#include <filesystem>

namespace lumora_config {

using ZelUnified::FleetService;

std::map<std::string, std::string> FleetServicePlugin::describe(const std::string& pluginFolder) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(std::filesystem::path(pluginFolder) / LUMORA_FLEET_LIBRARY, ignored)) {
        return {};
    }
    return {{ZelUnified::readableTypeName<FleetService>(), LUMORA_FLEET_LIBRARY}};
}

void FleetServicePlugin::start(ZelUnified::UnifiedFactory& factory, const std::string& pluginFolder) {
    if (!describe(pluginFolder).empty() && factory.getFeatureSetByType<FleetService>()) {
        factory.StartFeatureSet(FleetService::fleetServiceId, nullptr);
    }
}

} // namespace lumora_config
