#include "ConfigAdapter.h"

#include "ConfigDirectoryReset.h"
#include "StoreNamePredicates.h"
#include "featuresets/adapters/config/cache/ConfigAdapterLogger.h"
#include "featuresets/adapters/config/chain/CachedConfigFiles.h"
#include "featuresets/adapters/config/chain/ConfigChangeObservers.h"
#include "featuresets/adapters/config/stores/StorePriorities.h"
#include "services/impl/ConfigFileCacheTimer.h"
#include "services/impl/ConfigServiceImpl.h"

#include <kyr/FileUtils.h>
#include <kyr/FunctionTask.h>
#include <kyr/LockGuard.h>
#include <kyr/StringUtils.h>
#include <unified/SystemService.h>
#include <zel/SystemMonitorFactory.h>

#include <BootstrapConfigStore.h>
#include <ConfigCatalogue.h>
#include <ConfigService.h>
#include <InMemoryConfigStore.h>
#include <LocalFileConfigStore.h>
#include <MdmConfigStore.h>
#include <RegistryConfigStore.h>

namespace ZelUnified {

using KyrCoreUtils::caseInsensitiveStringEquals;
using KyrCoreUtils::FileUtils;
using KyrCoreUtils::FunctionTask;
using KyrCoreUtils::LockGuard;

namespace {

void logInfo(const char* file, int line, std::string_view function, const char* text) {
    ZelLog(configAdapterLogger, ZelLogLevel::Info, file, line, function, text);
}

/// `consequence` continues the sentence.
void logNotStarted(const char* file, int line, std::string_view function, std::string_view consequence = "") {
    std::string text("Config FeatureSet Not Started");
    text.append(consequence);
    ZelLog(configAdapterLogger, ZelLogLevel::Error, file, line, function, text);
}

/// Returns true for stores from which the enabled services are derived when they are added.
bool isTelephonyStore(const std::string& name) {
    return isGarnConfigStore(name) || isPresenceConfigStore(name) || isTftpConfigStore(name) ||
           isTaviLyncRegistryConfigStore(name);
}

/// Empties the stores that still exist and waits for their writes in progress.
void emptyStores(const std::vector<std::weak_ptr<LocalFileConfigStore>>& stores) {
    for (const auto& known : stores) {
        if (const auto store = known.lock()) {
            store->removeAllValues();
            store->waitForWrite();
        }
    }
}

} // namespace

ConfigAdapter::ConfigAdapter() = default;

ConfigAdapter::ConfigAdapter(std::shared_ptr<UnifiedFactory> factory)
    : unifiedFactory(std::move(factory)), configStoreManager(std::make_shared<ConfigStoreManager>(unifiedFactory)) {
    configService = std::dynamic_pointer_cast<ConfigServiceImpl>(unifiedFactory->getServiceByType<ConfigService>());
    configFileCacheTimer = std::make_shared<ConfigFileCacheTimer>(unifiedFactory);
    logInfo(ZEL_HERE, "Creating a new instance of the ConfigAdapter.");
    notifyConfigKeyAliases();
    configStoreManager->addObserver(this);
    setSensitiveKeys();
    addInitialConfigStores();
    setEnabledServicesFromCachedStores();
}

void ConfigAdapter::StartFeatureSet(unsigned int id, std::shared_ptr<ServiceEventList>) {
    if (id == configServiceId) {
        startConfigFeatureSet();
    }
}

void ConfigAdapter::startConfigFeatureSet() {
    logInfo(ZEL_HERE, "starting config feature set");
    const LockGuard lock(adapterMutex);
    if (featureSetStarted || !configStoreManager) {
        return;
    }
    if (!resetDataCallbackRegistered) {
        const auto dispatcher = unifiedFactory->getServicesDispatcher();
        if (dispatcher->checkForUpdateAccess()) {
            registerResetDataCallback();
        } else {
            dispatcher->enqueue(std::make_shared<FunctionTask>([this] { registerResetDataCallback(); },
                                                               "ConfigAdapter::registerResetDataCallback"),
                                false);
        }
        resetDataCallbackRegistered = true;
    }
    addNecessaryStoresIfNotExist();
    featureSetStarted = true;
    ZelSystemMonitor::SystemMonitorFactory::getInstance()->addPowerEventObserver(shared_from_this());
}

void ConfigAdapter::StopFeatureSet(unsigned int id, std::shared_ptr<ServiceEventList>) {
    const LockGuard lock(adapterMutex);
    if (id == configServiceId) {
        stopConfigFeatureSet();
    }
}

void ConfigAdapter::stopConfigFeatureSet() {
    logInfo(ZEL_HERE, "stopping config feature set");
    const LockGuard lock(adapterMutex);
    if (!featureSetStarted) {
        return;
    }
    ZelSystemMonitor::SystemMonitorFactory::getInstance()->removePowerEventObserver(shared_from_this());
    unifiedFactory->getServicesDispatcher()->enqueueBlock(
        std::make_shared<FunctionTask>([manager = configStoreManager] { manager->removeNonLocalStores(); },
                                       "ConfigStoreManager::reset"),
        false);
    featureSetStarted = false;
}

void ConfigAdapter::Destroy() {
    const LockGuard lock(adapterMutex);
    if (configStoreManager) {
        configStoreManager->destroyStores();
    }
    featureSetStarted = false;
}

bool ConfigAdapter::IsFeatureSetStarted(unsigned int id) {
    const LockGuard lock(adapterMutex);
    return id == configServiceId && featureSetStarted;
}

bool ConfigAdapter::IsFeatureSetProvisioned(unsigned int id) {
    return id == configServiceId;
}

std::vector<unsigned int> ConfigAdapter::GetFeatureSetDependencies(unsigned int) {
    return {};
}

void ConfigAdapter::refreshConfigFeatureSet() {
    const LockGuard lock(adapterMutex);
    if (!configStoreManager) {
        return;
    }
    configStoreManager->removeNonLocalStores();
    configStoreManager->addStore(makeInMemoryStore());
    configStoreManager->addStore(makeUserStore(BackupTimer::With));
    configStoreManager->addStore(makeRegistryStore());
    cachedStores.InitialiseCachedConfigStores();
    setEnabledServicesFromCachedStores();
    removeValuesIfPolicySet();
}

void ConfigAdapter::addInitialConfigStores() {
    if (ZelLog_isDebugEnabled(configAdapterLogger)) {
        ZelLog(configAdapterLogger, ZelLogLevel::Debug, ZEL_HERE, "adding initial config stores");
    }
    // One at a time: makeUserStore() reads the SDK mode, which the defaults may contain.
    configStoreManager->addStore(makeDefaultsStore());
    configStoreManager->addStore(makeInMemoryStore());
    configStoreManager->addStore(makeUserStore(BackupTimer::With));
    configStoreManager->addStore(makeRegistryStore());
    cachedStores.InitialiseCachedConfigStores();
    removeValuesIfPolicySet();
}

void ConfigAdapter::addNecessaryStoresIfNotExist() {
    if (!configStoreManager->hasStoreWithName(std::string(ConfigKeys::inMemoryConfigStore))) {
        configStoreManager->addStore(makeInMemoryStore());
    }
    if (!configStoreManager->hasStoreWithName(std::string(ConfigKeys::localFileConfigStore))) {
        configStoreManager->addStore(makeUserStore(BackupTimer::Without));
    }
}

std::shared_ptr<ConfigStore> ConfigAdapter::makeDefaultsStore() const {
    const std::string fileName(ConfigKeys::configDefaultsFile);
    return std::make_shared<LocalFileConfigStore>(fileName, StorePriorities::defaults,
                                                  FileUtils::getResourcesDirectory() + FileUtils::FileSeparator(),
                                                  fileName, true, true, false);
}

std::shared_ptr<ConfigStore> ConfigAdapter::makeInMemoryStore() const {
    return std::make_shared<InMemoryConfigStore>(std::string(ConfigKeys::inMemoryConfigStore),
                                                 StorePriorities::inMemory);
}

std::shared_ptr<ConfigStore> ConfigAdapter::makeUserStore(BackupTimer backupTimer) {
    const std::string name(ConfigKeys::localFileConfigStore);
    if (cachedStores.getLumoraSDKMode()) {
        return std::make_shared<InMemoryConfigStore>(name, StorePriorities::localFile);
    }
    auto store = std::make_shared<LocalFileConfigStore>(name, StorePriorities::localFile, false);
    if (backupTimer == BackupTimer::With) {
        store->setTimer(configFileCacheTimer);
    }
    const LockGuard lock(adapterMutex);
    std::erase_if(userFileStores, [](const auto& known) { return known.expired(); });
    userFileStores.push_back(store);
    return store;
}

std::shared_ptr<ConfigStore> ConfigAdapter::makeRegistryStore() const {
    return std::make_shared<RegistryConfigStore>(unifiedFactory, std::string(ConfigKeys::registryConfigStore),
                                                 StorePriorities::registry,
                                                 std::string(ConfigKeys::policyRegistryPath));
}

void ConfigAdapter::setEnabledServicesFromCachedStores() {
    if (EnabledServices::shouldSetEnabledServicesBasedOnCachedStores()) {
        enabledServices.SetEnabledServices();
    }
}

void ConfigAdapter::registerResetDataCallback() {
    const auto self = shared_from_this();
    if (const auto callbacks = getResetDataCallbackRegistry()) {
        callbacks->add(0, self);
    }
}

void ConfigAdapter::unRegisterResetDataCallback() {
    const auto self = shared_from_this();
    if (const auto callbacks = getResetDataCallbackRegistry()) {
        callbacks->remove(0, self);
    }
}

std::shared_ptr<ResetDataCallbackRegistry> ConfigAdapter::getResetDataCallbackRegistry() {
    const auto systemService = unifiedFactory->getServiceByType<SystemService>();
    return systemService ? systemService->getResetDataCallbackRegistry() : nullptr;
}

void ConfigAdapter::InvokeResetData(ResetDataOptionEnum::ResetDataOption) {
    logInfo(ZEL_HERE, "About to reset the ConfigAdapter...");
    const LockGuard lock(adapterMutex);
    if (configFileCacheTimer) {
        configFileCacheTimer->clearTimers();
    }
    emptyChain();
    const auto separator = FileUtils::FileSeparator();
    FileUtils::removeFile(FileUtils::getUserLocalAppDir() + separator + "Google calendar" + separator + "calendar.bat");
    removeFilesFromDirectory(FileUtils::getConfigDirectory());
    RegistryConfigStore::removeRegistrySettings();
    refreshConfigFeatureSet();
    logInfo(ZEL_HERE, "ConfigAdapter reset.");
}

void ConfigAdapter::emptyChain() {
    std::vector<std::shared_ptr<LocalFileConfigStore>> files;
    for (const auto& store : getConfigStores()) {
        if (auto file = std::dynamic_pointer_cast<LocalFileConfigStore>(store)) {
            files.push_back(std::move(file));
        }
    }
    if (configStoreManager) {
        configStoreManager->resetConfigData();
    }
    // Without the chain's lock, so that readers do not wait for the disk.
    for (const auto& file : files) {
        file->waitForWrite();
    }
    // Also those that are no longer in the chain: their queued writes would restore the old settings.
    emptyStores(userFileStores);
}

void ConfigAdapter::onPowerEvent(ZelSystemMonitor::PowerEventTypeEnum::PowerEventType type) {
    if (type != ZelSystemMonitor::PowerEventTypeEnum::PowerDown) {
        return;
    }
    logInfo(ZEL_HERE, "Config adapter received a power down event. Calling destroy on configAdapter");
    Destroy();
}

ConfigServiceImpl* ConfigAdapter::getServiceOfThisThread() const {
    const auto dispatcher = configService ? unifiedFactory->getServicesDispatcher() : nullptr;
    return dispatcher && dispatcher->checkForUpdateAccess() ? configService.get() : nullptr;
}

void ConfigAdapter::callService(std::string_view taskName, std::wstring_view taskSubject,
                                std::function<void(ConfigServiceImpl&)> call) {
    if (auto* const service = getServiceOfThisThread()) {
        call(*service);
        return;
    }
    const auto dispatcher = configService ? unifiedFactory->getServicesDispatcher() : nullptr;
    if (!dispatcher) {
        return;
    }
    // A weak reference: a strong one would create a cycle of service, factory and queue.
    dispatcher->enqueue(std::make_shared<FunctionTask>(
                            [service = std::weak_ptr(configService), call = std::move(call)] {
                                if (const auto alive = service.lock()) {
                                    call(*alive);
                                }
                            },
                            std::string(taskName) + KyrCoreUtils::toString(taskSubject)),
                        false);
}

void ConfigAdapter::notifyConfigKeyAliases() {
    callService("ConfigServiceImpl::setupConfigKeyAliases", {},
                [newNameOf = configStoreManager->getKeyAliases()](ConfigServiceImpl& service) {
                    service.setupConfigKeyAliases(newNameOf);
                });
}

void ConfigAdapter::onFireIfRequired(std::wstring key) {
    if (auto* const service = getServiceOfThisThread()) {
        service->FireIfRequired(std::move(key));
        return;
    }
    callService("ConfigServiceImpl::FireIfRequired - ", key,
                [key](ConfigServiceImpl& service) { service.FireIfRequired(key); });
}

void ConfigAdapter::onSensitiveKeyAddedOrUpdated(std::wstring key) {
    callService("ConfigServiceImpl::OnConfigChanged", {},
                [key = std::move(key)](ConfigServiceImpl& service) { service.updateSensitiveKeyList(key); });
}

void ConfigAdapter::onConfigAddedOrUpdated(std::wstring key, std::wstring value, std::wstring originalValue,
                                           bool isOverridden, bool isDefined, std::wstring valueStoreName,
                                           std::wstring originalValueStoreName, bool deferFire) {
    if (auto* const service = getServiceOfThisThread()) {
        announcementOrder->addDirect(key);
        service->OnConfigChanged(std::move(key), std::move(value), std::move(originalValue), isOverridden, isDefined,
                                 std::move(valueStoreName), std::move(originalValueStoreName), deferFire);
        return;
    }
    // Shared, because the dispatcher copies the task. The last owner zeroes the values.
    const auto change = std::make_shared<const ConfigChange>(
        ConfigChange{std::move(value), std::move(originalValue), isOverridden, isDefined, std::move(valueStoreName),
                     std::move(originalValueStoreName)});
    callService("ConfigServiceImpl::OnConfigChanged", {},
                [key = std::move(key), change, deferFire, order = announcementOrder,
                 number = announcementOrder->addQueued()](ConfigServiceImpl& service) {
                    if (!order->removeQueued(key, number)) {
                        return; // the record already holds a later value
                    }
                    service.OnConfigChanged(key, change->value, change->originalValue, change->isOverridden,
                                            change->isDefined, change->valueStoreName, change->originalValueStoreName,
                                            deferFire);
                });
}

void ConfigAdapter::addServiceEvent(int code, ConfigServiceIdsEnum::ConfigServiceIds id,
                                    ServiceEventSeverityEnum::ServiceEventSeverity severity) {
    if (!unifiedFactory) {
        return;
    }
    const auto dispatcher = unifiedFactory->getServicesDispatcher();
    if (!dispatcher) {
        return;
    }
    if (!dispatcher->checkForUpdateAccess()) {
        dispatcher->enqueue(
            std::make_shared<FunctionTask>([this, code, id, severity] { addServiceEvent(code, id, severity); },
                                           "ConfigAdapter::addServiceEvent"),
            false);
        return;
    }
    const auto systemService = unifiedFactory->getServiceByType<SystemService>();
    if (!systemService) {
        ZelLog(configAdapterLogger, ZelLogLevel::Warning, ZEL_HERE, "No system service, service event dropped");
        return;
    }
    systemService->addServiceEvent(code, id, severity);
}

void ConfigAdapter::addConfigStore(std::shared_ptr<ConfigStore> store) {
    if (!isStarted()) {
        const auto name = store ? store->getName() : std::string();
        logNotStarted(ZEL_HERE, ", failed to add ConfigStore with name: [" + name + "]");
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
    if (!isStarted()) {
        logNotStarted(ZEL_HERE, ", failed to remove ConfigStore with name: [" + name + "]");
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
    if (!isStarted()) {
        logNotStarted(ZEL_HERE, ", failed to check existance of ConfigStore with name: [" + name + "]");
        return false;
    }
    return configStoreManager && configStoreManager->hasStoreWithName(name);
}

void ConfigAdapter::updateExistingConfigStore(const std::shared_ptr<ConfigStore>& store,
                                              const std::vector<std::wstring>& oldKeys) {
    if (!isStarted() || !configStoreManager || !store) {
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
    if (!isStarted()) {
        logNotStarted(ZEL_HERE, ", failed to remove cached ConfigStores");
    }
    if (configStoreManager) {
        configStoreManager->removeAllCachedStores();
    }
}

std::shared_ptr<ConfigStore> ConfigAdapter::getConfigStoreByName(const std::string& name) {
    if (!isStarted()) {
        logNotStarted(ZEL_HERE);
    }
    return configStoreManager ? configStoreManager->getStoreByName(name) : nullptr;
}

std::vector<std::shared_ptr<ConfigStore>> ConfigAdapter::getConfigStores() {
    return configStoreManager ? configStoreManager->getStores() : std::vector<std::shared_ptr<ConfigStore>>();
}

std::shared_ptr<ConfigStore> ConfigAdapter::createBootstrapStore(const std::string& path, int priority) {
    return std::make_shared<BootstrapConfigStore>(std::string(ConfigKeys::bootstrapConfigStore), path, priority);
}

bool ConfigAdapter::getConfig(const std::wstring& key, std::wstring& value, std::wstring& configStoreName,
                              bool& valueFromLegacyKey, bool skipLocal) {
    if (!isStarted()) {
        logNotStarted(ZEL_HERE);
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
    if (!isStarted()) {
        logNotStarted(ZEL_HERE);
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
    for (const auto& name : ConfigKeys::listSensitiveNames()) {
        ConfigAdapter::setKeySensitive(name);
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
    if (!isStarted()) {
        logNotStarted(ZEL_HERE);
    }
    return configStoreManager ? configStoreManager->getValue(storeName, key) : std::wstring();
}

void ConfigAdapter::getAllConfigForPRT(std::wstring& report) {
    if (!isStarted()) {
        logNotStarted(ZEL_HERE);
    }
    if (configStoreManager) {
        configStoreManager->getConfigForPRT(report);
    }
}

} // namespace ZelUnified
