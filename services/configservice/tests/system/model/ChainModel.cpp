#include "ChainModel.h"

#include "KeyNames.h"
#include "StoreRecord.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <utility>

namespace config_model {

namespace {

const std::string sparedByReset[] = {"UrlProvisioningConfigStore", "BootstrapConfigStore", "MdmConfigStore",
                                     "lumora-config-defaults.xml", "devOverrideConfigStore"};

std::string extensionOf(const std::string& fileName) {
    const auto point = fileName.rfind('.');
    return point == std::string::npos ? "" : fileName.substr(point);
}

std::string withExtension(const std::string& fileName, const std::string& extension) {
    return fileName.substr(0, fileName.rfind('.')) + extension;
}

} // namespace

ChainModel::ChainModel(const ChainModel& other)
    : sensitiveKeys(other.sensitiveKeys),
      storeObservers(other.storeObservers),
      nextSerial(other.nextSerial),
      tasks(other.tasks),
      log(other.log),
      cachedFiles(other.cachedFiles),
      fips(other.fips) {
    std::copy(std::begin(other.serials), std::end(other.serials), std::begin(serials));
    // A store that waits to be persisted may have left the chain.
    std::map<Store, Store> copies;
    const auto copy = [&copies](const Store& store) {
        auto& made = copies[store];
        made = made || !store ? made : std::make_shared<ModelStore>(*store);
        return made;
    };
    for (const auto& store : other.chain) {
        chain.push_back(copy(store));
    }
    for (auto& task : tasks) {
        task.store = copy(task.store);
    }
}

// Arrival and removal of stores.

void ChainModel::addStore(const Store& store) {
    const auto& name = store->shape.name;
    if (hasStore(name)) {
        logUnlessOverrideStore(name, "updating existing store: " + name);
        for (std::size_t i = 0; i < chain.size(); ++i) {
            if (isSame(chain[i]->shape.name, name)) {
                updateExistingStore(store, chain[i]->getKeys());
            }
        }
        return;
    }
    chain.push_back(store);
    std::stable_sort(chain.begin(), chain.end(),
                     [](const auto& a, const auto& b) { return a->shape.priority < b->shape.priority; });
    std::string line = "adding new store: " + name + ", Config stores :";
    for (const auto& each : chain) {
        if (!isSame(each->shape.name, "devOverrideConfigStore")) {
            line += " [" + each->shape.name + "(" + std::to_string(each->shape.priority) + ")]";
        }
    }
    logUnlessOverrideStore(name, line);
    refreshKeys(store->getKeys());
    fireStoreAdded(name);
}

void ChainModel::updateExistingStore(const Store& store, const std::vector<std::wstring>& oldKeys) {
    const auto& name = store->shape.name;
    if (!hasStore(name)) {
        return;
    }
    removeStoreAndCachedCopy(name);
    const auto newKeys = store->getKeys();
    for (const auto& key : oldKeys) {
        if (std::none_of(newKeys.begin(), newKeys.end(), [&](const auto& each) { return isSame(each, key); })) {
            fireConfigChange(key, false);
        }
    }
    addStore(store);
}

void ChainModel::removeStoreAndCachedCopy(const std::string& name) {
    const auto store = getStoreByName(name);
    if (!store) {
        return;
    }
    if (store->shape.caching) {
        removeStoreAndCachedCopy("cached" + name + ".dat");
    }
    std::erase(chain, store);
}

bool ChainModel::removeStore(const std::string& name) {
    const auto store = getStoreByName(name);
    if (!store) {
        return false;
    }
    if (store->shape.caching || isSame(name, "UrlProvisioningConfigStore")) {
        removeCachedFiles("cached" + name + ".dat");
    }
    logUnlessOverrideStore(name, "Removing store: " + name);
    std::erase(chain, store);
    refreshKeys(store->getKeys());
    return true;
}

void ChainModel::removeNonLocalStores() {
    for (std::size_t i = chain.size(); i-- > 0;) {
        const auto store = chain[i];
        if (!store->shape.local) {
            std::erase(chain, store);
            refreshKeys(store->getKeys());
        }
    }
}

void ChainModel::destroyStores() {
    for (const auto& store : chain) {
        store->destroyed = true;
        if (store->shape.kind == StoreShape::Kind::Foreign) {
            told("destroy " + store->shape.name);
        }
    }
}

bool ChainModel::hasStore(const std::string& name) {
    return getStoreByName(name) != nullptr;
}

std::string ChainModel::findStore(const std::string& name) {
    const auto store = getStoreByName(name);
    return store ? store->shape.name : "";
}

ChainModel::Store ChainModel::getStoreByName(const std::string& name) {
    for (const auto& store : chain) {
        if (isSame(store->shape.name, name)) {
            return store;
        }
    }
    return nullptr;
}

// Announcements.

void ChainModel::fireConfigChange(const std::wstring& key, bool deferFire) {
    const auto reading = getValue(key, false, "");
    const auto original = getOriginalValue(key);
    auto value = reading.value;
    bool isOverridden = false;
    if (reading.fromLegacyKey && !original.fromLegacyKey && original.hasOverride) {
        value = original.value;
    } else {
        isOverridden = reading.found && original.hasOverride && (!reading.fromLegacyKey || original.fromLegacyKey);
    }
    auto announcedKey = key;
    const auto newName = findNewName(key);
    if (!newName.empty()) {
        if (lookupInStores(newName, false, "").found) {
            return;
        }
        announcedKey = newName;
    }
    changed(
        {announcedKey, value, original.value, isOverridden, reading.found, reading.store, original.store, deferFire});
}

void ChainModel::refreshKeys(const std::vector<std::wstring>& keys) {
    for (const auto& key : keys) {
        fireConfigChange(key, true);
    }
    for (const auto& key : keys) {
        const auto newName = findNewName(key);
        if (newName.empty()) {
            mayFire(key);
        } else if (!lookupInStores(newName, false, "").found) {
            mayFire(newName);
        }
    }
}

void ChainModel::setKeySensitive(const std::wstring& key) {
    sensitiveKeys.push_back(key);
    madeSensitive(key);
}

bool ChainModel::isKeySensitive(const std::wstring& key) {
    return std::any_of(sensitiveKeys.begin(), sensitiveKeys.end(), [&](const auto& each) { return isSame(each, key); });
}

// Resets and files.

void ChainModel::resetConfigData() {
    for (std::size_t i = chain.size(); i-- > 0;) {
        const auto store = chain[i];
        const auto& name = store->shape.name;
        if (std::count(std::begin(sparedByReset), std::end(sparedByReset), name) > 0) {
            continue;
        }
        log.push_back("Removing store " + name + " from ConfigManager.");
        removeStore(name);
        log.push_back("Removing all keys for store: " + name);
        store->removeAllValues();
    }
}

void ChainModel::resetConfigData(const std::string& name) {
    for (const auto& store : chain) {
        if (store->shape.name == name) {
            log.push_back("Removing all keys for store: " + name);
            store->removeAllValues();
        }
    }
}

void ChainModel::removeAllCachedStores() {
    std::vector<std::string> names;
    for (const auto& file : cachedFiles) {
        if (extensionOf(file) == ".xml") {
            names.push_back(file);
        }
    }
    for (const auto& file : cachedFiles) {
        if (extensionOf(file) == ".dat") {
            names.push_back(withExtension(file, ".xml"));
        }
    }
    for (const auto& name : names) {
        removeStore(name);
        removeCachedFiles(name);
    }
}

bool ChainModel::removeCachedFiles(const std::string& fileName) {
    const bool isCopy = fileName.starts_with("cached") && (fileName.ends_with(".dat") || fileName.ends_with(".xml"));
    if (!mayHaveCopy(fileName) || (isCopy && !mayHaveCopy(fileName.substr(6, fileName.size() - 10)))) {
        log.push_back("Name contains \"..\", cached file not removed: [" + fileName + "]");
        return false;
    }
    bool found = removeCachedFile(fileName);
    if (extensionOf(fileName) == ".xml") {
        found = removeCachedFile(withExtension(fileName, ".dat")) || found;
    }
    return found;
}

bool ChainModel::removeCachedFile(const std::string& fileName) {
    if (cachedFiles.erase(fileName) == 0) {
        return false;
    }
    log.push_back("Removed file: Cache/" + fileName);
    return true;
}

// Background tasks.

void ChainModel::persistLater(const Store& store) {
    tasks.push_back({"ConfigStore::persistValues", store, 0, ""});
}

void ChainModel::fireStoreAdded(const std::string& name) {
    for (const auto serial : storeObservers) {
        for (std::size_t number = 1; number < std::size(serials); ++number) {
            if (serials[number] == serial) {
                tasks.push_back({"ConfigStoreAddedObserver::OnConfigStoreAdded", nullptr, number, name});
            }
        }
    }
}

void ChainModel::registerStoreObserver(std::size_t number) {
    if (number == 0) {
        return;
    }
    storeObservers.push_back(serials[number]);
    log.emplace_back("ConfigStoreAddedObserver registered");
}

void ChainModel::unregisterStoreObserver(std::size_t number) {
    if (number == 0) {
        log.emplace_back("Attempt to unregister null ConfigStoreAddedObserver");
        return;
    }
    const bool known = std::erase(storeObservers, serials[number]) > 0;
    log.emplace_back(known ? "ConfigStoreAddedObserver unregistered"
                           : "Attempt to unregister unknown ConfigStoreAddedObserver");
}

void ChainModel::renewStoreObserver(std::size_t number) {
    serials[number] = nextSerial++;
}

std::vector<std::string> ChainModel::getTaskNames() {
    std::vector<std::string> names;
    for (const auto& task : tasks) {
        names.push_back(task.name);
    }
    return names;
}

void ChainModel::runTasks() {
    while (!tasks.empty()) {
        const auto task = std::move(tasks.front());
        tasks.pop_front();
        run(task);
    }
}

void ChainModel::run(const Task& task) {
    if (!task.store) {
        told("observer " + std::to_string(task.observer) + " " + task.arrived);
    } else if (task.store->shape.kind == StoreShape::Kind::Foreign) {
        told("persist " + task.store->shape.name);
    } else if (persisted) {
        persisted(*task.store);
    }
}

void ChainModel::logUnlessOverrideStore(const std::string& name, const std::string& line) {
    if (!isSame(name, "devOverrideConfigStore")) {
        log.push_back(line);
    }
}

} // namespace config_model
