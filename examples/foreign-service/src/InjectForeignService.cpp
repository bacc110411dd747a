#include "DirectoryServiceImpl.h"

#include <ForeignServiceExport.h>

#include <memory>

/// The entry point that every plug-in of the host exports.
extern "C" FOREIGN_SERVICE_API void InjectConfigService(std::shared_ptr<ZelUnified::UnifiedFactory> factory) {
    const auto service = std::make_shared<example::DirectoryServiceImpl>(factory);
    factory->getFeatureSets().registerItem<example::DirectoryService>(example::DirectoryService::directoryServiceId,
                                                                      service);
}
