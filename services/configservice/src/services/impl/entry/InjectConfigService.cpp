#include "InjectConfigService.h"

#include "featuresets/adapters/config/ConfigAdapter.h"
#include "services/impl/ConfigServiceImpl.h"

#include <ConfigFeatureSet.h>
#include <ConfigService.h>
#include <ConfigServiceIds.h>
#include <libxml/parser.h>

using namespace ZelUnified;

void InjectConfigService(std::shared_ptr<UnifiedFactory> factory) {
    // Called once, before any thread parses. Never cleaned up, because other users in the process share the library.
    xmlInitParser();
    // Registers the service first: the adapter's constructor looks it up.
    factory->getServices().registerItem<ConfigService>(configServiceId, std::make_shared<ConfigServiceImpl>(factory));
    if (factory->getFeatureSetByType<ConfigFeatureSet>()) {
        return;
    }
    const std::shared_ptr<FeatureSetAdapter> adapter = std::make_shared<ConfigAdapter>(factory);
    factory->getFeatureSets().registerItem<ConfigFeatureSet>(configServiceId,
                                                             std::dynamic_pointer_cast<ConfigFeatureSet>(adapter));
}
