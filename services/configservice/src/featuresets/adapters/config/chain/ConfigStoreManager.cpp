#include "ConfigStoreManager.h"

#include "BackgroundTasks.h"
#include "CachedConfigFiles.h"
#include "ConfigReport.h"
#include "ConfigStoreManagerLogger.h"
#include "UrlProvisioningData.h"
#include "featuresets/adapters/config/stores/StorePriorities.h"
#include "secure/SecureString.h"

#include <kyr/LockGuard.h>
#include <kyr/StringUtils.h>

#include <CacheConfigStore.h>
#include <ConfigKeys.h>

#include <algorithm>
#include <array>
#include <sstream>

namespace ZelUnified {

using KyrCoreUtils::caseInsensitiveStringEquals;
using KyrCoreUtils::LockGuard;
using KyrCoreUtils::toString;
using KyrCoreUtils::toWideString;

namespace {

/// Returns true for the developer's override store, which is left out of the logs only.
bool isOverrideStore(std::string_view name) {
    return caseInsensitiveStringEquals(name, ConfigKeys::devOverrideConfigStore);
}

/// Returns the text of the chain for logs.
std::string describeChain(const std::vector<StoreChain::NameAndPriority>& stores) {
    std::string text = ", Config stores :";
    for (const auto& [name, priority] : stores) {
        if (!isOverrideStore(name)) {
            text += " [" + name + "(" + std::to_string(priority) + ")]";
        }
    }
    return text;
}

/// Returns the log text for a key that was found under a name other than the requested one.
std::wstring describeRenaming(ConfigLookup::FoundUnder foundUnder, const RenamedKeys& renamedKeys,
                              const FoldedKey& key) {
    switch (foundUnder) {
    case ConfigLookup::FoundUnder::NewName:
        return L"is an alias. Key has been renamed. Actual lookup done on key name: [" + *renamedKeys.findNewName(key) +
               L"] - ";
    case ConfigLookup::FoundUnder::OldName:
        return L"did not exist. actual lookup done on legacy key name : [" + *renamedKeys.findOldName(key) + L"] - ";
    case ConfigLookup::FoundUnder::AskedName:
        break;
    }
    return L"";
}

/// Returns the text with personal data masked. `room` stores the masked text. Most texts contain no personal data and
/// are returned without a copy.
std::wstring_view withoutPersonalData(std::wstring_view text, std::wstring& room) {
    if (!ZelLogger_mayHoldPIIData(text)) {
        return text;
    }
    room = toWideString(ZelLogger_replacePIIData(toString(text)));
    return room;
}

bool isInMemoryStore(ConfigStore& store) {
    return caseInsensitiveStringEquals(store.getName(), ConfigKeys::inMemoryConfigStore);
}

/// Returns true for the stores that receive ordinary writes.
bool isWriteTarget(ConfigStore& store) {
    return !store.isReadOnly() && !isInMemoryStore(store);
}

bool isSparedByReset(const std::string& name) {
    constexpr std::array<std::string_view, 5> spared{
        ConfigKeys::urlProvisioningConfigStore, ConfigKeys::bootstrapConfigStore, ConfigKeys::mdmConfigStore,
        ConfigKeys::configDefaultsFile, ConfigKeys::devOverrideConfigStore};
    return std::find(spared.begin(), spared.end(), name) != spared.end();
}

} // namespace

ConfigStoreManager::ConfigStoreManager(std::shared_ptr<UnifiedFactory> factory)
    : unifiedFactory(std::move(factory)), storeAddedObservers(unifiedFactory) {
    ZelLog(configStoreManagerLogger, ZelLogLevel::Info, ZEL_HERE, "Creating a new instance of the ConfigStoreManager.");
}

void ConfigStoreManager::addStore(const std::shared_ptr<ConfigStore>& store) {
    const LockGuard lock(chainLock);
    if (!store) {
        return;
    }
    const auto name = store->getName();
    const auto stores = configStores.addUnlessNameIsTaken(store, name);
    if (!stores) {
        if (!isOverrideStore(name)) {
            ZelLog(configStoreManagerLogger, ZelLogLevel::Info, ZEL_HERE, "updating existing store: " + name);
        }
        updateConfigStore(store);
        return;
    }
    if (!isOverrideStore(name)) {
        ZelLog(configStoreManagerLogger, ZelLogLevel::Info, ZEL_HERE,
               "adding new store: " + name + describeChain(*stores));
    }
    refreshStoreKeys(store);
    storeAddedObservers.fireConfigStoreAdded(name);
}

void ConfigStoreManager::updateConfigStore(const std::shared_ptr<ConfigStore>& store) {
    const LockGuard lock(chainLock);
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
    const LockGuard lock(chainLock);
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
    const LockGuard lock(chainLock);
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
    const LockGuard lock(chainLock);
    const auto store = configStores.find(name);
    if (!store) {
        return false;
    }
    if (store->shouldCacheConfigStore() || caseInsensitiveStringEquals(name, ConfigKeys::urlProvisioningConfigStore)) {
        removeCachedFiles(CachedConfigFiles::getFileName(name));
    }
    if (!isOverrideStore(name)) {
        ZelLog(configStoreManagerLogger, ZelLogLevel::Info, ZEL_HERE, "Removing store: " + name);
    }
    configStores.remove(store);
    refreshStoreKeys(store);
    return true;
}

void ConfigStoreManager::removeNonLocalStores() {
    const LockGuard lock(chainLock);
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
    const LockGuard lock(chainLock);
    for (const auto walked = configStores.getStores(); const auto& store : *walked) {
        store->destroy();
    }
}

bool ConfigStoreManager::hasStoreWithName(const std::string& name) const {
    const LockGuard lock(chainLock);
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
    return renamedKeys.getNewNames();
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
    const LockGuard lock(chainLock);
    const FoldedKey folded(key);
    auto change = readConfigChange(folded);
    const auto* newName = renamedKeys.findNewName(folded);
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

bool ConfigStoreManager::getValue(const FoldedKey& key, std::wstring& value, std::wstring* configStoreName,
                                  bool& valueFromLegacyKey, bool skipLocal, const std::string& storeFilter) const {
    const LockGuard lock(chainLock);
    const bool isLogged = ZelLog_isDebugEnabled(configStoreManagerLogger);
    auto foundUnder = ConfigLookup::FoundUnder::AskedName;
    // Uses local results: the caller may pass the same string as the key and as an out parameter.
    std::wstring answer;
    std::wstring storeName = configStoreName == nullptr ? std::wstring() : *configStoreName;
    std::wstring* const wantedName = configStoreName != nullptr || isLogged ? &storeName : nullptr;
    const bool found = lookup.getValue(key, answer, wantedName, valueFromLegacyKey, skipLocal, storeFilter, foundUnder);
    if (const auto line = describeLookup(key, answer, found, storeName, foundUnder, skipLocal)) {
        ZelLog(configStoreManagerLogger, ZelLogLevel::Debug, ZEL_HERE, *line);
    }
    value = std::move(answer);
    if (configStoreName != nullptr) {
        *configStoreName = std::move(storeName);
    }
    return found;
}

std::optional<std::wstring> ConfigStoreManager::describeLookup(const FoldedKey& key, std::wstring_view value,
                                                               bool found, std::wstring_view storeName,
                                                               ConfigLookup::FoundUnder foundUnder,
                                                               bool skipLocal) const {
    // Masks before the test for debug logging, so that enabling the log changes nothing else.
    std::wstring masked;
    const auto shown = withoutPersonalData(sensitiveKeys.contains(key) ? ConfigKeys::valueHidden : value, masked);
    if (!ZelLog_isDebugEnabled(configStoreManagerLogger)) {
        return std::nullopt;
    }
    std::wostringstream text;
    text << L"key : [" << key.getText() << L"] " << describeRenaming(foundUnder, renamedKeys, key) << L"skipLocal : ["
         << skipLocal << L"]  value: [" << shown << L"] success: [" << (found ? L"true" : L"false")
         << L"] configStoreName: [" << storeName << L"]";
    return text.str();
}

bool ConfigStoreManager::getValue(const std::wstring& key, std::wstring& value, std::wstring& configStoreName,
                                  bool& valueFromLegacyKey, bool skipLocal, const std::string& storeFilter) const {
    return getValue(FoldedKey(key), value, &configStoreName, valueFromLegacyKey, skipLocal, storeFilter);
}

bool ConfigStoreManager::getValue(const std::wstring& key, std::wstring& value) const {
    return getValue(key, value, std::string());
}

bool ConfigStoreManager::getValue(const std::wstring& key, std::wstring& value, const std::string& storeFilter) const {
    bool valueFromLegacyKey = false;
    return getValue(FoldedKey(key), value, nullptr, valueFromLegacyKey, false, storeFilter);
}

std::wstring ConfigStoreManager::getValue(const std::string& storeFilter, const std::wstring& key) const {
    std::wstring value;
    return getValue(key, value, storeFilter) ? value : std::wstring();
}

bool ConfigStoreManager::getOriginalValue(const std::wstring& key, std::wstring& originalValue,
                                          std::wstring& originalValueStoreName, bool& fromLegacyKey) const {
    const LockGuard lock(chainLock);
    // Uses local results: the caller may pass the same string as the key and as an out parameter.
    std::wstring value;
    std::wstring storeName = originalValueStoreName;
    const bool hasOverride = lookup.getOriginalValue(FoldedKey(key), value, storeName, fromLegacyKey);
    originalValue = std::move(value);
    originalValueStoreName = std::move(storeName);
    return hasOverride;
}

bool ConfigStoreManager::storeValue(const std::wstring& key, const std::wstring& value) {
    const LockGuard lock(chainLock);
    const auto stores = configStores.getStores();
    const auto target =
        std::find_if(stores->begin(), stores->end(), [](const auto& store) { return isWriteTarget(*store); });
    if (target == stores->end()) {
        return false;
    }
    const bool stored = (*target)->storeValue(key, value);
    persistLater(*target);
    fireConfigChange(key, false);
    return stored;
}

bool ConfigStoreManager::storeValue(const ConfigMap& values) {
    const LockGuard lock(chainLock);
    bool targetFound = false;
    for (const auto walked = configStores.getStores(); const auto& store : *walked) {
        if (!isWriteTarget(*store)) {
            continue;
        }
        targetFound = true;
        for (const auto& [key, value] : values) {
            if (!store->storeValue(key, value)) {
                ZelLog(configStoreManagerLogger, ZelLogLevel::Warning, ZEL_HERE,
                       L"Unable to store the value with key: " + key.substr(0, 1));
            }
        }
        persistLater(store);
        for (const auto& [key, value] : values) {
            fireConfigChange(key, false);
        }
    }
    return targetFound;
}

bool ConfigStoreManager::setInMemoryValue(const std::wstring& key, const std::wstring& value) {
    const LockGuard lock(chainLock);
    const auto store = configStores.find(ConfigKeys::inMemoryConfigStore);
    if (!store) {
        return false;
    }
    const bool stored = store->storeValue(key, value);
    fireConfigChange(key, false);
    return stored;
}

bool ConfigStoreManager::removeValue(const std::wstring& key) {
    const LockGuard lock(chainLock);
    std::vector<const std::wstring*> names{&key};
    for (const auto* otherName : {renamedKeys.findNewName(key), renamedKeys.findOldName(key)}) {
        if (otherName != nullptr) {
            names.push_back(otherName);
        }
    }
    bool removed = false;
    for (const auto walked = configStores.getStores(); const auto& store : *walked) {
        if (store->isReadOnly()) {
            continue;
        }
        for (const auto* name : names) {
            if (store->removeValue(*name)) {
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

bool ConfigStoreManager::setUrlProvisioningData(const std::wstring& url) {
    const LockGuard lock(chainLock);
    ZelLog(configStoreManagerLogger, ZelLogLevel::Info, ZEL_HERE, "setting url provisioning data");
    auto settings = parseUrlProvisioningData(url);
    if (settings.empty()) {
        return false;
    }
    const std::string name(ConfigKeys::urlProvisioningConfigStore);
    addStore(std::make_shared<CacheConfigStore>(name, StorePriorities::urlProvisioning,
                                                CachedConfigFiles::getPathOfCopy(name), settings));
    // Provisioning works once: from now on the user's file forbids another.
    storeValue(std::wstring(ConfigKeys::allowUrlProvisioning), L"False");
    return true;
}

void ConfigStoreManager::persistLater(const std::shared_ptr<ConfigStore>& store) const {
    enqueueBackgroundTask(unifiedFactory, "ConfigStore::persistValues", [store] { store->persistValues(); });
}

void ConfigStoreManager::resetConfigData() {
    const LockGuard lock(chainLock);
    for (std::size_t i = configStores.getStores()->size(); i-- > 0;) {
        // Observers may have changed the chain during the last iteration.
        const auto store = configStores.at(i);
        if (!store || isSparedByReset(store->getName())) {
            continue;
        }
        const auto name = store->getName();
        ZelLog(configStoreManagerLogger, ZelLogLevel::Info, ZEL_HERE,
               "Removing store " + name + " from ConfigManager.");
        removeStoreWithSameName(name);
        ZelLog(configStoreManagerLogger, ZelLogLevel::Info, ZEL_HERE, "Removing all keys for store: " + name);
        store->removeAllValues();
    }
}

void ConfigStoreManager::resetConfigData(const std::string& storeName) {
    const LockGuard lock(chainLock);
    const auto stores = configStores.getStores();
    const auto found = std::find_if(stores->rbegin(), stores->rend(),
                                    [&](const auto& store) { return store->getName() == storeName; });
    if (found != stores->rend()) {
        ZelLog(configStoreManagerLogger, ZelLogLevel::Info, ZEL_HERE, "Removing all keys for store: " + storeName);
        (*found)->removeAllValues();
    }
}

void ConfigStoreManager::removeAllCachedStores() {
    for (const auto& name : CachedConfigFiles::getXmlNames()) {
        removeStoreWithSameName(name);
        removeCachedFiles(name);
    }
}

bool ConfigStoreManager::removeCachedFiles(const std::string& fileName) {
    const LockGuard lock(chainLock);
    return CachedConfigFiles::removeCachedFiles(fileName);
}

void ConfigStoreManager::getConfigForPRT(std::wstring& out) const {
    out = L"<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<AllConfigs>\n";
    {
        const LockGuard lock(chainLock);
        out += ConfigReport::describeStores(
            *configStores.getStores(), [this](const std::wstring& key) { return isSensitiveKey(key); }, {ZEL_HERE});
    }
    out += ConfigReport::getConfigForPRTFromFile();
    out += L"\n</AllConfigs>";
}

} // namespace ZelUnified
