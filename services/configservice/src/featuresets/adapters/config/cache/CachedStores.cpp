#include "CachedStores.h"

#include "CachedStoreRecord.h"
#include "ConfigAdapterLogger.h"
#include "featuresets/adapters/config/chain/CachedConfigFiles.h"
#include "featuresets/adapters/config/stores/StorePriorities.h"

#include <kyr/StringUtils.h>

#include <CacheConfigStore.h>
#include <ConfigKeys.h>

#include <limits>
#include <optional>

namespace ZelUnified {

using KyrCoreUtils::caseInsensitiveStringEquals;
using KyrCoreUtils::toInt;
using KyrCoreUtils::toString;

namespace {

const std::wstring& recordKey() {
    static const std::wstring key(ConfigKeys::primaryConfigStores);
    return key;
}

/// Returns true and logs a warning if a store of that name has no copy.
bool isRefused(const std::string& name, std::string_view refusal, const LogPlace& place) {
    if (CachedConfigFiles::mayHaveCopy(name)) {
        return false;
    }
    ZelLog(configAdapterLogger, ZelLogLevel::Warning, place,
           "Name contains \"..\", " + std::string(refusal) + ": [" + name + "]");
    return true;
}

} // namespace

void CachedStores::InitialiseCachedConfigStores() {
    if (!configStoreManager) {
        ZelLog(configAdapterLogger, ZelLogLevel::Error, ZEL_HERE, "configStoreManager is null");
        return;
    }
    if (ZelLog_isDebugEnabled(configAdapterLogger)) {
        ZelLog(configAdapterLogger, ZelLogLevel::Debug, ZEL_HERE, "adding cached config stores");
    }
    std::wstring record;
    configStoreManager->getValue(recordKey(), record);
    std::optional<std::wstring> presencePriority;
    for (const auto& [name, priority] : CachedStoreRecord::getCachedConfigStorePrioityMap(record)) {
        if (caseInsensitiveStringEquals(name, ConfigKeys::presenceConfigStore)) {
            presencePriority = priority;
        } else {
            addCachedConfigStore(toString(name), toInt(priority, StorePriorities::cachedCopy));
        }
    }
    if (presencePriority) {
        addPresenceStore(*presencePriority);
    }
    addUrlProvisioningStore({ZEL_HERE});
}

/// Called last, so that the lookup of the product mode includes all other copies.
void CachedStores::addPresenceStore(const std::wstring& priority) {
    const std::wstring name(ConfigKeys::presenceConfigStore);
    std::wstring productMode;
    configStoreManager->getValue(std::wstring(ConfigKeys::productMode), productMode);
    if (caseInsensitiveStringEquals(productMode, ConfigKeys::phoneMode)) {
        removeFromCachedStorePriorityMap(name);
        return;
    }
    addCachedConfigStore(toString(name), toInt(priority, StorePriorities::cachedCopy));
}

void CachedStores::addUrlProvisioningStore(const LogPlace& place) {
    const std::string name(ConfigKeys::urlProvisioningConfigStore);
    std::wstring allowed;
    configStoreManager->getValue(std::wstring(ConfigKeys::allowUrlProvisioning), allowed,
                                 std::string(ConfigKeys::mdmConfigStore));
    if (caseInsensitiveStringEquals(allowed, L"false")) {
        ZelLog(configAdapterLogger, ZelLogLevel::Info, place,
               "Url Provisioning not allowed by MDM configuration, removing cached URL provisioning store");
        adapter.removeConfigStore(name);
        return;
    }
    configStoreManager->addStore(std::make_shared<CacheConfigStore>(name, StorePriorities::urlProvisioning,
                                                                    CachedConfigFiles::getPathOfCopy(name)));
}

void CachedStores::addCachedConfigStore(const std::string& name, int priority) {
    if (getLumoraSDKMode() || isRefused(name, "cached store not read", {ZEL_HERE})) {
        return;
    }
    // The copy has the name of the live store, so that the live store replaces it when added.
    configStoreManager->addStore(
        std::make_shared<CacheConfigStore>(name, priority, CachedConfigFiles::getPathOfCopy(name)));
}

void CachedStores::addCachedConfigStores(const std::wstring& record) {
    for (const auto& [name, priority] : CachedStoreRecord::getCachedConfigStorePrioityMap(record)) {
        addCachedConfigStore(toString(name), toInt(priority, StorePriorities::cachedCopyOfGivenRecord));
    }
}

void CachedStores::cacheStoreOnConfigStoreAdded(const std::shared_ptr<ConfigStore>& store) {
    if (getLumoraSDKMode() || isRefused(store->getName(), "store not cached", {ZEL_HERE})) {
        return;
    }
    ConfigMap values;
    copyAllStoreValues(store, values);
    const int priority = store->getCachedPriority();
    updateCacheStorePriority(store->getName(), priority);
    const auto fileName = CachedConfigFiles::getFileName(store->getName());
    // This store only writes the file; it is never added to the chain.
    const int writerPriority = priority == std::numeric_limits<int>::max() ? priority : priority + 1;
    const CacheConfigStore writer(fileName, writerPriority, CachedConfigFiles::getPath(fileName), values);
    if (configStoreManager->hasStoreWithName(fileName)) {
        configStoreManager->removeStoreWithSameName(fileName);
    }
}

void CachedStores::copyAllStoreValues(const std::shared_ptr<ConfigStore>& store, ConfigMap& values) {
    std::wstring value;
    for (const auto& key : store->getKeys()) {
        if (store->getValue(key, value)) {
            values.insert_or_assign(key, value);
        }
    }
}

void CachedStores::updateCacheStorePriority(const std::string& name, int priority) {
    if (!configStoreManager) {
        return;
    }
    const auto chainLock = configStoreManager->holdChain();
    std::wstring record;
    adapter.getConfig(recordKey(), record, false);
    auto priorities = CachedStoreRecord::getCachedConfigStorePrioityMap(record);
    priorities.insert_or_assign(KyrCoreUtils::toWideString(name), KyrCoreUtils::toWideString(priority));
    configStoreManager->storeValue(recordKey(), CachedStoreRecord::format(priorities));
}

void CachedStores::removeFromCachedStorePriorityMap(const std::wstring& name) {
    const auto chainLock = configStoreManager ? configStoreManager->holdChain() : ConfigStoreManager::HeldChain();
    std::wstring record;
    adapter.getConfig(recordKey(), record, false);
    adapter.setConfig(recordKey(), CachedStoreRecord::without(std::move(record), name));
}

bool CachedStores::getLumoraSDKMode() {
    std::wstring mode;
    adapter.getConfig(std::wstring(ConfigKeys::lumoraSdkMode), mode, false);
    return KyrCoreUtils::toBool(mode);
}

} // namespace ZelUnified
