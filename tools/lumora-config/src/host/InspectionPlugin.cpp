#include "InspectionPlugin.h"

#include "output/Failure.h"

#include <unified/TypeName.h>
#include <zel/LogLineCatcher.h>

#include <InspectionService.h>

namespace lumora_config {

using zel::logging::LogLineCatcher;
using ZelUnified::InspectionService;

std::map<std::string, std::string> InspectionPlugin::describe() {
    return {{ZelUnified::readableTypeName<InspectionService>(), LUMORA_INSPECTION_LIBRARY}};
}

std::string InspectionPlugin::start(ZelUnified::UnifiedFactory& factory, bool changesAllowed) {
    const LogLineCatcher loaderLog("UnifiedFactory-PluginLoader");
    const auto inspection = factory.getFeatureSetByType<InspectionService>();
    if (!inspection) {
        throw Failure(ExitCode::Environment,
                      "the plug-in " LUMORA_INSPECTION_LIBRARY " does not work: " + loaderLog.getText());
    }
    const LogLineCatcher serviceLog("Inspection-Service");
    inspection->setChangesAllowed(changesAllowed);
    factory.StartFeatureSet(InspectionService::inspectionServiceId, nullptr);
    auto path = inspection->getSocketPath();
    if (path.empty()) {
        throw Failure(ExitCode::Environment, "the profile cannot be served: " + serviceLog.getText());
    }
    return path;
}

} // namespace lumora_config
