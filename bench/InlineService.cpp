#include "InlineService.h"

#include "services/impl/entry/InjectConfigService.h"

#include <ConfigServiceIds.h>

#include <utility>

namespace bench {

InlineService::InlineService() {
    InjectConfigService(factory);
    factory->StartFeatureSet(ZelUnified::configServiceId, nullptr);
    service = factory->getServiceByType<ZelUnified::ConfigService>();
    featureSet = factory->getFeatureSetByType<ZelUnified::ConfigFeatureSet>();
}

InlineService::~InlineService() {
    service.reset();
    featureSet.reset();
    factory->Destroy();
}

ZelUnified::ConfigMap makeValues(SyntheticKeys& generator, std::size_t count) {
    ZelUnified::ConfigMap values;
    for (auto& key : generator.makeKeys(count)) {
        values.emplace(std::move(key), generator.makeValue());
    }
    return values;
}

std::shared_ptr<ZelUnified::InMemoryConfigStore> makeStore(const std::string& name, int priority,
                                                           const ZelUnified::ConfigMap& values) {
    auto store = std::make_shared<ZelUnified::InMemoryConfigStore>(name, priority);
    for (const auto& [key, value] : values) {
        store->storeValue(key, value);
    }
    return store;
}

} // namespace bench
