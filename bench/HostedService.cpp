#include "HostedService.h"

#include "featuresets/adapters/config/ConfigAdapter.h"
#include "services/impl/entry/InjectConfigService.h"

#include <ConfigServiceIds.h>
#include <DefaultsFile.h>
#include <XmlConfigStore.h>

#include <string>

namespace bench {

using namespace ZelUnified;

namespace {

constexpr int firstDocumentPriority = 100;

std::shared_ptr<UnifiedFactoryImpl> makeFactory() {
    UnifiedFactoryOptions options;
    options.servicesThread = UnifiedFactoryOptions::ServicesThread::Pumped;
    return std::make_shared<UnifiedFactoryImpl>(std::move(options));
}

} // namespace

HostedService::HostedService(const std::vector<ConfigMap>& layers, Records records) : factory(makeFactory()) {
    const bool hasOuterLayers = layers.size() > 1;
    writeDefaults(hasOuterLayers ? layers.back() : ConfigMap());
    factory->Init();
    if (records == Records::With) {
        InjectConfigService(factory);
        configService = factory->getServiceByType<ConfigService>();
    } else {
        factory->getFeatureSets().registerItem<ConfigFeatureSet>(configServiceId,
                                                                 std::make_shared<ConfigAdapter>(factory));
    }
    configFeatureSet = factory->getFeatureSetByType<ConfigFeatureSet>();
    factory->StartFeatureSet(configServiceId, nullptr);
    if (hasOuterLayers) {
        configFeatureSet->setConfig(layers.front());
    }
    const std::size_t outer = hasOuterLayers ? 1 : 0;
    for (std::size_t i = outer; i + outer < layers.size(); ++i) {
        addDocument(i, layers[i]);
    }
    factory->pumpAllDispatcherTasks();
    factory->flushBackgroundDispatcher();
}

HostedService::~HostedService() {
    configService.reset();
    configFeatureSet.reset();
    factory->Destroy();
}

void HostedService::writeDefaults(const ConfigMap& values) const {
    testing_host::writeDefaults(profile.resources(), values);
}

void HostedService::addDocument(std::size_t number, const ConfigMap& values) {
    const auto store = std::make_shared<XmlConfigStore>("Document" + std::to_string(number),
                                                        firstDocumentPriority + static_cast<int>(number), true, false,
                                                        std::string(), false);
    for (const auto& [key, value] : values) {
        store->storeValue(key, value);
    }
    configFeatureSet->addConfigStore(store);
}

} // namespace bench
