#include "ChainModel.h"
#include "KeyNames.h"
#include "ModelUrl.h"

#include <algorithm>

namespace config_model {

// Lookup of values.

Reading ChainModel::lookupInStores(const std::wstring& key, bool skipLocal, const std::string& filter) {
    Reading reading;
    for (const auto& store : state.chain) {
        if (!filter.empty() && !isSame(filter, store->shape.name)) {
            continue;
        }
        if (skipLocal && !store->shape.readOnly) {
            continue;
        }
        if (store->getValue(key, reading.value, state.fips)) {
            reading.found = true;
            reading.store = widen(store->shape.name);
            break;
        }
    }
    if (!reading.found) {
        reading.value.clear();
    }
    if (state.fips && isSame(key, L"Telephony_P2P_Enabled")) {
        reading.value = L"false";
    }
    return reading;
}

Reading ChainModel::getValue(const std::wstring& key, bool skipLocal, const std::string& filter) {
    const auto newName = findNewName(key);
    if (!newName.empty()) {
        auto reading = lookupInStores(newName, skipLocal, filter);
        if (!reading.found) {
            reading = lookupInStores(key, skipLocal, filter);
            reading.fromLegacyKey = reading.found;
        }
        return reading;
    }
    auto reading = lookupInStores(key, skipLocal, filter);
    const auto oldName = findOldName(key);
    if (!reading.found && !oldName.empty()) {
        reading = lookupInStores(oldName, skipLocal, filter);
        reading.fromLegacyKey = reading.found;
    }
    return reading;
}

std::wstring ChainModel::getValueOfStore(const std::string& filter, const std::wstring& key) {
    const auto reading = getValue(key, false, filter);
    return reading.found ? reading.value : L"";
}

bool ChainModel::findOriginalValue(const std::wstring& key, OriginalReading& reading, bool& found) {
    std::wstring writableValue;
    std::wstring readOnlyValue;
    bool hasOverride = false;
    found = false;
    for (const auto& store : state.chain) {
        if (!writableValue.empty() && !readOnlyValue.empty()) {
            break;
        }
        if (!store->shape.readOnly && writableValue.empty()) {
            const bool answered = store->getValue(key, writableValue, state.fips);
            if (answered && readOnlyValue.empty()) {
                hasOverride = true;
            }
        }
        if (store->shape.readOnly && readOnlyValue.empty() && store->getValue(key, readOnlyValue, state.fips)) {
            reading.store = widen(store->shape.name);
            found = true;
        }
    }
    reading.value = readOnlyValue;
    return hasOverride;
}

OriginalReading ChainModel::getOriginalValue(const std::wstring& key) {
    OriginalReading reading;
    bool found = false;
    const auto newName = findNewName(key);
    if (!newName.empty()) {
        reading.hasOverride = findOriginalValue(newName, reading, found);
        if (!reading.hasOverride) {
            reading.hasOverride = findOriginalValue(key, reading, found);
            reading.fromLegacyKey = reading.hasOverride;
        }
        return reading;
    }
    reading.hasOverride = findOriginalValue(key, reading, found);
    const auto oldName = findOldName(key);
    if (!found && !oldName.empty()) {
        reading.hasOverride = findOriginalValue(oldName, reading, found);
        reading.fromLegacyKey = reading.hasOverride;
    }
    return reading;
}

// Writes.

bool ChainModel::isWriteTarget(const ModelStore& store) {
    return !store.shape.readOnly && !isSame(store.shape.name, "InMemoryConfigStore");
}

bool ChainModel::storeValue(const std::wstring& key, const std::wstring& value) {
    const auto target =
        std::find_if(state.chain.begin(), state.chain.end(), [](const auto& each) { return isWriteTarget(*each); });
    if (target == state.chain.end()) {
        return false;
    }
    const auto store = *target;
    const bool stored = store->storeValue(key, value);
    persistLater(store);
    fireConfigChange(key, false);
    return stored;
}

bool ChainModel::storeValues(const Pairs& values) {
    const ModelStore map({.name = "map", .pairs = values});
    bool hasTarget = false;
    for (const auto& store : std::vector(state.chain)) {
        if (!isWriteTarget(*store)) {
            continue;
        }
        hasTarget = true;
        for (const auto& [key, value] : map.shape.pairs) {
            if (!store->storeValue(key, value)) {
                state.log.push_back("Unable to store the value with key: " + narrow(key.substr(0, 1)));
            }
        }
        persistLater(store);
        for (const auto& key : map.getKeys()) {
            fireConfigChange(key, false);
        }
    }
    return hasTarget;
}

bool ChainModel::setInMemoryValue(const std::wstring& key, const std::wstring& value) {
    const auto store = getStoreByName("InMemoryConfigStore");
    if (!store) {
        return false;
    }
    const bool stored = store->storeValue(key, value);
    fireConfigChange(key, false);
    return stored;
}

bool ChainModel::removeValue(const std::wstring& key) {
    std::vector<std::wstring> names{key};
    for (const auto& other : {findNewName(key), findOldName(key)}) {
        if (!other.empty()) {
            names.push_back(other);
        }
    }
    bool removed = false;
    for (const auto& store : std::vector(state.chain)) {
        if (store->shape.readOnly) {
            continue;
        }
        for (const auto& name : names) {
            if (store->removeValue(name)) {
                persistLater(store);
                removed = true;
            }
        }
    }
    if (removed) {
        fireConfigChange(key, false);
    }
    return removed;
}

bool ChainModel::setUrlProvisioningData(const std::wstring& url) {
    state.log.push_back("setting url provisioning data");
    const auto pairs = readProvisioningUrl(url);
    if (pairs.empty()) {
        return false;
    }
    state.cachedFiles.insert("cachedUrlProvisioningConfigStore.dat");
    addStore(StoreShape{
        .kind = StoreShape::Kind::Copy, .name = "UrlProvisioningConfigStore", .priority = 499, .pairs = pairs});
    storeValue(L"AllowUrlProvisioning", L"False");
    return true;
}

} // namespace config_model
