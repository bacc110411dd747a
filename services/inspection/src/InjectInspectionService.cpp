#include "InspectionServiceImpl.h"

#include <InspectionServiceExport.h>

#include <memory>

/// The entry point that every plug-in of the host exports.
extern "C" INSPECTION_SERVICE_API void InjectConfigService(std::shared_ptr<ZelUnified::UnifiedFactory> factory) {
    const auto service = std::make_shared<inspection::InspectionServiceImpl>(factory);
    factory->getFeatureSets().registerItem<ZelUnified::InspectionService>(
        ZelUnified::InspectionService::inspectionServiceId, service);
}
