// Implements ConfigFeatureSet, the sensitive keys and the policy. ConfigAdapter.cpp contains lifecycle, reset and
// notifications.

#include "ConfigAdapter.h"
#include "StoreNamePredicates.h"
#include "featuresets/adapters/config/cache/ConfigAdapterLogger.h"
#include "featuresets/adapters/config/chain/CachedConfigFiles.h"

#include <kyr/StringUtils.h>

#include <ConfigKeys.h>
#include <MdmConfigStore.h>

#include <array>

namespace ZelUnified {

using KyrCoreUtils::caseInsensitiveStringEquals;

namespace {

constexpr const char* notStarted = "Config FeatureSet Not Started";

void logError(const char* file, int line, std::string_view function, const std::string& text) {
    ZelLog(configAdapterLogger(), ZelLogLevel::Error, file, line, function, text);
}

/// Returns true for stores from which the enabled services are derived when they are added.
bool isTelephonyStore(const std::string& name) {
    return isGarnConfigStore(name) || isPresenceConfigStore(name) || isTftpConfigStore(name) ||
           isTaviLyncRegistryConfigStore(name);
}

} // namespace

void ConfigAdapter::addConfigStore(std::shared_ptr<ConfigStore> store) {
    if (!featureSetStarted) {
        logError(ZEL_HERE, std::string(notStarted) + ", failed to add ConfigStore with name: [" +
                               (store ? store->getName() : std::string()) + "]");
        return;
    }
    if (!configStoreManager || !store) {
        return;
    }
    configStoreManager->addStore(store);
    if (store->shouldCacheConfigStore()) {
        cachedStores.cacheStoreOnConfigStoreAdded(store);
    }
    removeValuesIfPolicySet();
    if (isTelephonyStore(store->getName())) {
        enabledServices.SetEnabledServices();
    }
}

bool ConfigAdapter::removeConfigStore(const std::string& name) {
    if (!featureSetStarted) {
        logError(ZEL_HERE, std::string(notStarted) + ", failed to remove ConfigStore with name: [" + name + "]");
        return false;
    }
    if (!configStoreManager) {
        return false;
    }
    bool removed = false;
    const auto cachedName = CachedConfigFiles::getFileName(name);
    if (configStoreManager->hasStoreWithName(cachedName) && configStoreManager->removeStoreWithSameName(cachedName)) {
        configStoreManager->removeCachedFiles(cachedName);
        removed = true;
    }
    if (configStoreManager->hasStoreWithName(name) && configStoreManager->removeStoreWithSameName(name)) {
        removed = true;
    }
    cachedStores.removeFromCachedStorePriorityMap(KyrCoreUtils::toWideString(name));
    return removed;
}

bool ConfigAdapter::isConfigStorePresent(const std::string& name) {
    if (!featureSetStarted) {
        logError(ZEL_HERE,
                 std::string(notStarted) + ", failed to check existance of ConfigStore with name: [" + name + "]");
        return false;
    }
    return configStoreManager && configStoreManager->hasStoreWithName(name);
}

void ConfigAdapter::updateExistingConfigStore(const std::shared_ptr<ConfigStore>& store,
                                              const std::vector<std::wstring>& oldKeys) {
    if (!featureSetStarted || !configStoreManager || !store) {
        return;
    }
    configStoreManager->updateExistingConfigStore(store, oldKeys);
    if (store->shouldCacheConfigStore()) {
        cachedStores.cacheStoreOnConfigStoreAdded(store);
    }
}

void ConfigAdapter::registerConfigStoreAddedObserver(std::shared_ptr<ConfigStoreAddedObserver> observer) {
    configStoreManager->registerConfigStoreAddedObserver(observer);
}

void ConfigAdapter::unregisterConfigStoreAddedObserver(std::shared_ptr<ConfigStoreAddedObserver> observer) {
    configStoreManager->unregisterConfigStoreAddedObserver(observer);
}

void ConfigAdapter::removeAllCachedConfigStores() {
    if (!featureSetStarted) {
        logError(ZEL_HERE, std::string(notStarted) + ", failed to remove cached ConfigStores");
    }
    if (configStoreManager) {
        configStoreManager->removeAllCachedStores();
    }
}

std::shared_ptr<ConfigStore> ConfigAdapter::getConfigStoreByName(const std::string& name) {
    if (!featureSetStarted) {
        logError(ZEL_HERE, notStarted);
    }
    return configStoreManager ? configStoreManager->getStoreByName(name) : nullptr;
}

bool ConfigAdapter::getConfig(const std::wstring& key, std::wstring& value, std::wstring& configStoreName,
                              bool& valueFromLegacyKey, bool skipLocal) {
    if (!featureSetStarted) {
        logError(ZEL_HERE, notStarted);
    }
    return configStoreManager &&
           configStoreManager->getValue(key, value, configStoreName, valueFromLegacyKey, skipLocal, "");
}

bool ConfigAdapter::getConfig(const std::wstring& key, std::wstring& value, bool skipLocal) {
    std::wstring configStoreName;
    bool valueFromLegacyKey = false;
    return getConfig(key, value, configStoreName, valueFromLegacyKey, skipLocal);
}

bool ConfigAdapter::setConfig(ConfigMap values) {
    return configStoreManager && configStoreManager->storeValue(values);
}

bool ConfigAdapter::setConfig(const std::wstring& key, const std::wstring& value) {
    return configStoreManager && configStoreManager->storeValue(key, value);
}

bool ConfigAdapter::setInMemoryConfig(const std::wstring& key, const std::wstring& value) {
    if (!featureSetStarted) {
        logError(ZEL_HERE, notStarted);
    }
    return configStoreManager && configStoreManager->setInMemoryValue(key, value);
}

void ConfigAdapter::setMdmConfig(const std::string& xml) {
    const auto store = std::make_shared<MdmConfigStore>(xml);
    if (configStoreManager) {
        configStoreManager->addStore(store);
    }
}

void ConfigAdapter::resetConfig(const std::wstring& key) {
    if (configStoreManager) {
        configStoreManager->removeValue(key);
    }
}

void ConfigAdapter::resetConfigData(const std::string& storeName) {
    if (configStoreManager) {
        configStoreManager->resetConfigData(storeName);
    }
}

bool ConfigAdapter::setUrlProvisioningData(std::wstring data) {
    return configStoreManager && !isSwitchedOff(ConfigKeys::allowUrlProvisioning) &&
           configStoreManager->setUrlProvisioningData(data);
}

bool ConfigAdapter::resetAllowUriProvisioningData() {
    return configStoreManager && isSwitchedOff(ConfigKeys::allowUrlProvisioning) &&
           configStoreManager->removeValue(std::wstring(ConfigKeys::allowUrlProvisioning));
}

bool ConfigAdapter::isSwitchedOff(std::wstring_view key) const {
    std::wstring value;
    configStoreManager->getValue(std::wstring(key), value);
    return caseInsensitiveStringEquals(value, L"false");
}

void ConfigAdapter::SetEnabledServices() {
    enabledServices.SetEnabledServices();
}

void ConfigAdapter::setSensitiveKeys() {
    constexpr std::array keys{
        ConfigKeys::initialInfo,         ConfigKeys::additionalInfo,         ConfigKeys::connectionPassword,
        ConfigKeys::connectionUsername,  ConfigKeys::bdiConnectionPassword,  ConfigKeys::bdiConnectionUsername,
        ConfigKeys::bdiConnectionUserDn, ConfigKeys::meetingListOfflineData, ConfigKeys::meetingListOnlineData,
    };
    for (const auto key : keys) {
        ConfigAdapter::setKeySensitive(std::wstring(key));
    }
}

void ConfigAdapter::setKeySensitive(const std::wstring& key) {
    if (configStoreManager) {
        configStoreManager->setKeySensitive(key);
    }
}

bool ConfigAdapter::isKeySensitive(const std::wstring& key) {
    return configStoreManager && configStoreManager->isSensitiveKey(key);
}

void ConfigAdapter::removeValuesIfPolicySet() {
    if (!configStoreManager) {
        return;
    }
    if (isSwitchedOff(ConfigKeys::customizeVoicemailServer)) {
        configStoreManager->removeValue(std::wstring(ConfigKeys::voicemailPrimaryServer));
    }
    if (isSwitchedOff(ConfigKeys::customizePhoneServer)) {
        for (const auto key : {ConfigKeys::tftpPrimaryServer, ConfigKeys::ctiServer1, ConfigKeys::sabrelServer1}) {
            configStoreManager->removeValue(std::wstring(key));
        }
    }
}

std::wstring ConfigAdapter::getValueFromConfigStore(const std::string& storeName, const std::wstring& key) {
    if (!featureSetStarted) {
        logError(ZEL_HERE, notStarted);
    }
    return configStoreManager ? configStoreManager->getValue(storeName, key) : std::wstring();
}

void ConfigAdapter::getAllConfigForPRT(std::wstring& report) {
    if (!featureSetStarted) {
        logError(ZEL_HERE, notStarted);
    }
    if (configStoreManager) {
        configStoreManager->getConfigForPRT(report);
    }
}

} // namespace ZelUnified
