#include "CachedDocuments.h"

#include "RowSuite.h"
#include "services/impl/entry/InjectConfigService.h"

#include <ConfigService.h>
#include <ConfigValue.h>
#include <DefaultsFile.h>
#include <RecordingFactory.h>

#include <map>

namespace bench {

using namespace ZelUnified;

namespace {

constexpr std::size_t layerCount = 8;

int priorityOf(std::size_t number) {
    constexpr int firstPriority = 100;
    return firstPriority + static_cast<int>(number);
}

} // namespace

CachedDocuments::CachedDocuments(const testing_host::TemporaryProfile& ownerProfile, std::size_t keys)
    : profile(ownerProfile), keysInLayer(keys), workload(layerCount, keys) {
    for (std::size_t i = 0; i < layerCount; ++i) {
        auto values = workload.getLayers()[i];
        const CacheConfigStore writer(nameOf(i), priorityOf(i), pathOf(i), values);
    }
    check();
}

CachedDocuments::Stores CachedDocuments::load() const {
    Stores stores;
    for (std::size_t i = 0; i < layerCount; ++i) {
        stores.push_back(std::make_unique<CacheConfigStore>(nameOf(i), priorityOf(i), pathOf(i)));
    }
    return stores;
}

void CachedDocuments::select() const {
    std::string record;
    for (std::size_t i = 0; i < layerCount; ++i) {
        record += nameOf(i) + ":" + std::to_string(priorityOf(i)) + ";";
    }
    testing_host::writeDefaults(profile.resources(),
                                std::map<std::string, std::string>{{"PrimaryConfigStores", record}});
}

void CachedDocuments::check() const {
    for (const auto& store : load()) {
        require(store->getKeys().size() == keysInLayer, "a copy");
    }
    select();
    const StartedService service;
    for (const auto& [key, value] : workload.getHits()) {
        require(service.read(key) == value, "a record");
    }
}

std::string CachedDocuments::nameOf(std::size_t number) const {
    return "Delivered" + std::to_string(keysInLayer) + "Of" + std::to_string(number);
}

std::string CachedDocuments::pathOf(std::size_t number) const {
    return (profile.config() / "Cache" / ("cached" + nameOf(number) + ".dat")).string();
}

StartedService::StartedService() : factory(std::make_shared<testing_host::RecordingFactory>()) {
    InjectConfigService(factory);
}

StartedService::~StartedService() {
    factory->Destroy();
}

std::wstring StartedService::read(const std::wstring& key) const {
    return factory->getServiceByType<ConfigService>()->getConfig(key)->getValue();
}

} // namespace bench
