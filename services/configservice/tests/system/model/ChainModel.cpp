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

ChainModel::ChainModel(const ChainModel& other) : state(other.state) {
    // A store that waits to be persisted may have left the chain.
    std::map<Store, Store> copies;
    const auto copy = [&copies](Store& store) {
        auto& made = copies[store];
        made = made || !store ? made : std::make_shared<ModelStore>(*store);
        store = made;
    };
    std::for_each(state.chain.begin(), state.chain.end(), copy);
    for (auto& task : state.tasks) {
        copy(task.store);
    }
}

// Arrival and removal of stores.

void ChainModel::addStore(const Store& store) {
    const auto& name = store->shape.name;
    if (hasStore(name)) {
        logUnlessOverrideStore(name, "updating existing store: " + name);
        for (std::size_t i = 0; i < state.chain.size(); ++i) {
            if (isSame(state.chain[i]->shape.name, name)) {
                updateExistingStore(store, state.chain[i]->getKeys());
            }
        }
        return;
    }
    state.chain.push_back(store);
    std::stable_sort(state.chain.begin(), state.chain.end(),
                     [](const auto& a, const auto& b) { return a->shape.priority < b->shape.priority; });
    std::string line = "adding new store: " + name + ", Config stores :";
    for (const auto& each : state.chain) {
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
    std::erase(state.chain, store);
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
    std::erase(state.chain, store);
    refreshKeys(store->getKeys());
    return true;
}

void ChainModel::removeNonLocalStores() {
    for (std::size_t i = state.chain.size(); i-- > 0;) {
        const auto store = state.chain[i];
        if (!store->shape.local) {
            std::erase(state.chain, store);
            refreshKeys(store->getKeys());
        }
    }
}

void ChainModel::destroyStores() {
    for (const auto& store : state.chain) {
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
    for (const auto& store : state.chain) {
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
    state.sensitiveKeys.push_back(key);
    madeSensitive(key);
}

bool ChainModel::isKeySensitive(const std::wstring& key) {
    return std::any_of(state.sensitiveKeys.begin(), state.sensitiveKeys.end(),
                       [&](const auto& each) { return isSame(each, key); });
}

// Resets and files.

void ChainModel::resetConfigData() {
    for (std::size_t i = state.chain.size(); i-- > 0;) {
        const auto store = state.chain[i];
        const auto& name = store->shape.name;
        if (std::count(std::begin(sparedByReset), std::end(sparedByReset), name) > 0) {
            continue;
        }
        state.log.push_back("Removing store " + name + " from ConfigManager.");
        removeStore(name);
        state.log.push_back("Removing all keys for store: " + name);
        store->removeAllValues();
    }
}

void ChainModel::resetConfigData(const std::string& name) {
    for (const auto& store : state.chain) {
        if (store->shape.name == name) {
            state.log.push_back("Removing all keys for store: " + name);
            store->removeAllValues();
        }
    }
}

void ChainModel::removeAllCachedStores() {
    std::vector<std::string> names;
    for (const auto& file : state.cachedFiles) {
        if (extensionOf(file) == ".xml") {
            names.push_back(file);
        }
    }
    for (const auto& file : state.cachedFiles) {
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
        state.log.push_back("Name contains \"..\", cached file not removed: [" + fileName + "]");
        return false;
    }
    bool found = removeCachedFile(fileName);
    if (extensionOf(fileName) == ".xml") {
        found = removeCachedFile(withExtension(fileName, ".dat")) || found;
    }
    return found;
}

bool ChainModel::removeCachedFile(const std::string& fileName) {
    if (state.cachedFiles.erase(fileName) == 0) {
        return false;
    }
    state.log.push_back("Removed file: Cache/" + fileName);
    return true;
}

// Background tasks.

void ChainModel::persistLater(const Store& store) {
    state.tasks.push_back({"ConfigStore::persistValues", store, 0, ""});
}

void ChainModel::fireStoreAdded(const std::string& name) {
    for (const auto serial : state.storeObservers) {
        for (std::size_t number = 1; number < std::size(state.serials); ++number) {
            if (state.serials[number] == serial) {
                state.tasks.push_back({"ConfigStoreAddedObserver::OnConfigStoreAdded", nullptr, number, name});
            }
        }
    }
}

void ChainModel::registerStoreObserver(std::size_t number) {
    if (number == 0) {
        return;
    }
    state.storeObservers.push_back(state.serials[number]);
    state.log.emplace_back("ConfigStoreAddedObserver registered");
}

void ChainModel::unregisterStoreObserver(std::size_t number) {
    if (number == 0) {
        state.log.emplace_back("Attempt to unregister null ConfigStoreAddedObserver");
        return;
    }
    const bool known = std::erase(state.storeObservers, state.serials[number]) > 0;
    state.log.emplace_back(known ? "ConfigStoreAddedObserver unregistered"
                                 : "Attempt to unregister unknown ConfigStoreAddedObserver");
}

void ChainModel::renewStoreObserver(std::size_t number) {
    state.serials[number] = state.nextSerial++;
}

std::vector<std::string> ChainModel::getTaskNames() {
    std::vector<std::string> names;
    for (const auto& task : state.tasks) {
        names.push_back(task.name);
    }
    return names;
}

void ChainModel::runTasks() {
    while (!state.tasks.empty()) {
        const auto task = std::move(state.tasks.front());
        state.tasks.pop_front();
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
        state.log.push_back(line);
    }
}

} // namespace config_model
