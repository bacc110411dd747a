#include "FleetServiceImpl.h"

#include <FleetServiceExport.h>

#include <memory>

/// The entry point that every plug-in of the host exports.
extern "C" FLEET_SERVICE_API void InjectConfigService(std::shared_ptr<ZelUnified::UnifiedFactory> factory) {
    const auto service = std::make_shared<fleet::FleetServiceImpl>(factory);
    factory->getFeatureSets().registerItem<ZelUnified::FleetService>(ZelUnified::FleetService::fleetServiceId, service);
}
