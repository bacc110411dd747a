#include "ConfigStoreManager.h"

#include "CachedConfigFiles.h"
#include "ConfigStoreManagerLogger.h"
#include "secure/SecureString.h"

#include <kyr/StringUtils.h>

#include <ConfigKeys.h>

namespace ZelUnified {

using KyrCoreUtils::caseInsensitiveStringEquals;

namespace {

/// Returns true for the developer's override store, which is left out of the logs only.
bool isOverrideStore(std::string_view name) {
    return caseInsensitiveStringEquals(name, ConfigKeys::devOverrideConfigStore);
}

} // namespace

ConfigStoreManager::ConfigStoreManager(std::shared_ptr<UnifiedFactory> factory)
    : unifiedFactory(std::move(factory)), storeAddedObservers(unifiedFactory) {
    ZelLog(configStoreManagerLogger(), ZelLogLevel::Info, ZEL_HERE,
           "Creating a new instance of the ConfigStoreManager.");
}

void ConfigStoreManager::addStore(const std::shared_ptr<ConfigStore>& store) {
    const std::lock_guard lock(chainLock);
    if (!store) {
        return;
    }
    const auto name = store->getName();
    if (hasStoreWithName(name)) {
        if (!isOverrideStore(name)) {
            ZelLog(configStoreManagerLogger(), ZelLogLevel::Info, ZEL_HERE, "updating existing store: " + name);
        }
        updateConfigStore(store);
        return;
    }
    configStores.add(store);
    if (!isOverrideStore(name)) {
        ZelLog(configStoreManagerLogger(), ZelLogLevel::Info, ZEL_HERE, "adding new store: " + name + describeChain());
    }
    refreshStoreKeys(store);
    storeAddedObservers.fireConfigStoreAdded(name);
}

std::string ConfigStoreManager::describeChain() const {
    std::string text = ", Config stores :";
    for (const auto walked = configStores.getStores(); const auto& store : *walked) {
        const auto name = store->getName();
        if (!isOverrideStore(name)) {
            text += " [" + name + "(" + std::to_string(store->getPriority()) + ")]";
        }
    }
    return text;
}

void ConfigStoreManager::updateConfigStore(const std::shared_ptr<ConfigStore>& store) {
    const std::lock_guard lock(chainLock);
    const auto name = store->getName();
    // Each update changes the chain, so the loop reads the current store at each position. It visits a new version
    // again if that is inserted behind the position of the old one.
    for (std::size_t i = 0; const auto present = configStores.at(i); ++i) {
        if (caseInsensitiveStringEquals(present->getName(), name)) {
            updateExistingConfigStore(store, present->getKeys());
        }
    }
}

void ConfigStoreManager::updateExistingConfigStore(const std::shared_ptr<ConfigStore>& store,
                                                   const std::vector<std::wstring>& oldKeys) {
    const std::lock_guard lock(chainLock);
    if (!store || !hasStoreWithName(store->getName())) {
        return;
    }
    removeStoreAndCachedCopy(store->getName());
    const auto newKeys = store->getKeys();
    const ConfigKeySet kept(newKeys.begin(), newKeys.end());
    for (const auto& key : oldKeys) {
        if (!kept.contains(key)) {
            fireConfigChange(key, false);
        }
    }
    addStore(store);
}

void ConfigStoreManager::removeStoreAndCachedCopy(const std::string& name) {
    const std::lock_guard lock(chainLock);
    const auto store = configStores.find(name);
    if (!store) {
        return;
    }
    if (store->shouldCacheConfigStore()) {
        removeStoreAndCachedCopy(CachedConfigFiles::getFileName(name));
    }
    configStores.remove(store);
}

bool ConfigStoreManager::removeStoreWithSameName(const std::string& name) {
    const std::lock_guard lock(chainLock);
    const auto store = configStores.find(name);
    if (!store) {
        return false;
    }
    if (store->shouldCacheConfigStore() || caseInsensitiveStringEquals(name, ConfigKeys::urlProvisioningConfigStore)) {
        removeCachedFiles(CachedConfigFiles::getFileName(name));
    }
    if (!isOverrideStore(name)) {
        ZelLog(configStoreManagerLogger(), ZelLogLevel::Info, ZEL_HERE, "Removing store: " + name);
    }
    configStores.remove(store);
    refreshStoreKeys(store);
    return true;
}

void ConfigStoreManager::removeNonLocalStores() {
    const std::lock_guard lock(chainLock);
    for (std::size_t i = configStores.getStores()->size(); i-- > 0;) {
        // Observers may have changed the chain during the last iteration.
        const auto store = configStores.at(i);
        if (store && !store->isLocal()) {
            configStores.remove(store);
            refreshStoreKeys(store);
        }
    }
}

void ConfigStoreManager::destroyStores() {
    const std::lock_guard lock(chainLock);
    for (const auto walked = configStores.getStores(); const auto& store : *walked) {
        store->destroy();
    }
}

bool ConfigStoreManager::hasStoreWithName(const std::string& name) const {
    const std::lock_guard lock(chainLock);
    return configStores.find(name) != nullptr;
}

std::shared_ptr<ConfigStore> ConfigStoreManager::getStoreByName(const std::string& name) const {
    return configStores.find(name);
}

void ConfigStoreManager::registerConfigStoreAddedObserver(const std::shared_ptr<ConfigStoreAddedObserver>& observer) {
    storeAddedObservers.registerConfigStoreAddedObserver(observer);
}

void ConfigStoreManager::unregisterConfigStoreAddedObserver(const std::shared_ptr<ConfigStoreAddedObserver>& observer) {
    storeAddedObservers.unregisterConfigStoreAddedObserver(observer);
}

void ConfigStoreManager::addObserver(ConfigStoreManager_Observer* observer) {
    observers.add(observer);
}

void ConfigStoreManager::setKeySensitive(const std::wstring& key) {
    sensitiveKeys.add(key);
    observers.notifySensitiveKey(key);
}

bool ConfigStoreManager::isSensitiveKey(const std::wstring& key) const {
    return sensitiveKeys.contains(FoldedKey(key));
}

ConfigMap ConfigStoreManager::getKeyAliases() const {
    return keyAliases.getKeyAliases();
}

void ConfigStoreManager::refreshStoreKeys(const std::shared_ptr<ConfigStore>& store) {
    if (store) {
        refreshKeys(ChainLink(store).listKeys());
    }
}

void ConfigStoreManager::refreshKeys(const KeyList& keys) {
    std::wstring key;
    std::vector<const std::wstring*> newNames;
    newNames.reserve(keys.size());
    for (std::size_t i = 0; i < keys.size(); ++i) {
        key = keys[i];
        newNames.push_back(fireConfigChange(key, true));
    }
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const auto* const newName = newNames[i];
        if (newName == nullptr) {
            key = keys[i];
            observers.notifyFireIfRequired(key);
        } else if (!isHeld(*newName)) {
            observers.notifyFireIfRequired(*newName);
        }
    }
}

const std::wstring* ConfigStoreManager::fireConfigChange(const std::wstring& key, bool deferFire) {
    const std::lock_guard lock(chainLock);
    const FoldedKey folded(key);
    auto change = readConfigChange(folded);
    const auto* newName = keyAliases.lookupKeyAlias(folded);
    if (newName == nullptr) {
        observers.notifyConfigAddedOrUpdated(key, std::move(change), deferFire);
        return nullptr;
    }
    // If a store contains the new name, that name has its own announcement.
    if (!isHeld(*newName)) {
        observers.notifyConfigAddedOrUpdated(*newName, std::move(change), deferFire);
    }
    return newName;
}

ConfigChange ConfigStoreManager::readConfigChange(const FoldedKey& key) const {
    ConfigChange change;
    if (getValue(key, change)) {
        return change;
    }
    bool valueFromLegacyKey = false;
    bool originalFromLegacyKey = false;
    change.isDefined = getValue(key, change.value, &change.valueStoreName, valueFromLegacyKey, false, "");
    const bool hasOverride =
        lookup.getOriginalValue(key, change.originalValue, change.originalValueStoreName, originalFromLegacyKey);
    if (valueFromLegacyKey && !originalFromLegacyKey && hasOverride) {
        zel::SecureString::wipe(change.value);
        change.value = change.originalValue;
        return change;
    }
    change.isOverridden = change.isDefined && hasOverride && (!valueFromLegacyKey || originalFromLegacyKey);
    return change;
}

bool ConfigStoreManager::isHeld(const std::wstring& key) const {
    std::wstring value;
    const bool held = lookup.lookupInStores(FoldedKey(key), value, nullptr, false, "");
    zel::SecureString::wipe(value);
    return held;
}

} // namespace ZelUnified
