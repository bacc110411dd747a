// Replaces InspectionPlugin.cpp in a build without the service.
#include "InspectionPlugin.h"
#include "output/Failure.h"

namespace lumora_config {

std::map<std::string, std::string> InspectionPlugin::describe() {
    return {};
}

std::string InspectionPlugin::start(ZelUnified::UnifiedFactory& /*factory*/, bool /*changesAllowed*/) {
    throw Failure(ExitCode::Environment, "this program was built without the service that answers other processes");
}

} // namespace lumora_config
