#include "ManagerChain.h"

#include "CachedFolder.h"
#include "TracedConfigStore.h"

#include <kyr/FileUtils.h>
#include <zel/FipsUtils.h>

#include <ConfigStoreAddedObserver.h>
#include <InMemoryConfigStore.h>
#include <TemporaryProfile.h>

namespace config_model {

using namespace ZelUnified;

/// Reports the name of each arriving store, and its own number.
class ManagerChain::StoreObserver final : public ConfigStoreAddedObserver {
public:
    StoreObserver(const ManagerChain& owner, std::size_t itsNumber) : chain(owner), number(itsNumber) {}
    void OnConfigStoreAdded(const std::string& storeName) override {
        chain.told("observer " + std::to_string(number) + " " + storeName);
    }

private:
    const ManagerChain& chain;
    const std::size_t number;
};

ManagerChain::ManagerChain()
    : cacheFolder(std::filesystem::path(KyrCoreUtils::FileUtils::getConfigDirectory()) / "Cache") {
    std::filesystem::remove_all(cacheFolder);
    setFipsMode(false);
    manager.addObserver(this);
    for (std::size_t number = 1; number < storeObservers.size(); ++number) {
        renewStoreObserver(number);
    }
    log.clear();
}

ManagerChain::~ManagerChain() {
    factory->backgroundDispatcher->clear();
    zel::common::FipsUtils::overrideFipsMode(std::nullopt);
}

std::shared_ptr<ConfigStore> ManagerChain::makeStore(const StoreShape& shape) {
    if (shape.kind == StoreShape::Kind::Memory) {
        auto store = std::make_shared<InMemoryConfigStore>(shape.name, shape.priority);
        for (const auto& [key, value] : shape.pairs) {
            store->storeValue(key, value);
        }
        return store;
    }
    return std::make_shared<TracedConfigStore>(shape, [this](const std::string& line) { told(line); });
}

std::string ManagerChain::findStore(const std::string& name) {
    const auto store = manager.getStoreByName(name);
    return store ? store->getName() : "";
}

void ManagerChain::registerStoreObserver(std::size_t number) {
    manager.registerConfigStoreAddedObserver(storeObservers.at(number));
}

void ManagerChain::unregisterStoreObserver(std::size_t number) {
    manager.unregisterConfigStoreAddedObserver(storeObservers.at(number));
}

void ManagerChain::renewStoreObserver(std::size_t number) {
    storeObservers.at(number) = std::make_shared<StoreObserver>(*this, number);
}

Reading ManagerChain::getValue(const std::wstring& key, bool skipLocal, const std::string& filter) {
    Reading reading;
    reading.found = manager.getValue(key, reading.value, reading.store, reading.fromLegacyKey, skipLocal, filter);
    return reading;
}

OriginalReading ManagerChain::getOriginalValue(const std::wstring& key) {
    OriginalReading reading;
    reading.hasOverride = manager.getOriginalValue(key, reading.value, reading.store, reading.fromLegacyKey);
    return reading;
}

bool ManagerChain::storeValues(const Pairs& values) {
    ConfigMap map;
    for (const auto& [key, value] : values) {
        map[key] = value;
    }
    return manager.storeValue(map);
}

void ManagerChain::setFipsMode(bool on) {
    zel::common::FipsUtils::overrideFipsMode(on);
}

void ManagerChain::placeCachedFile(const std::string& fileName) {
    testing_host::writeFile(cacheFolder / fileName, "copy");
}

std::vector<std::string> ManagerChain::listCachedFiles() {
    return listFolder(cacheFolder);
}

std::vector<std::string> ManagerChain::takeLog() {
    auto lines = log.getTexts("ConfigService-ConfigStoreManager");
    log.clear();
    const auto folder = cacheFolder.string() + KyrCoreUtils::FileUtils::FileSeparator();
    for (auto& line : lines) {
        if (const auto position = line.find(folder); position != std::string::npos) {
            line.replace(position, folder.size(), "Cache/");
        }
    }
    return lines;
}

void ManagerChain::onConfigAddedOrUpdated(std::wstring key, std::wstring value, std::wstring originalValue,
                                          bool isOverridden, bool isDefined, std::wstring valueStoreName,
                                          std::wstring originalValueStoreName, bool deferFire) {
    changed({key, value, originalValue, isOverridden, isDefined, valueStoreName, originalValueStoreName, deferFire});
}

} // namespace config_model
