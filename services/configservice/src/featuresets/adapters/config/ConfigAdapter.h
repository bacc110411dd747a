#pragma once

#include "AnnouncementOrder.h"
#include "EnabledServices.h"
#include "featuresets/adapters/config/cache/CachedStores.h"
#include "featuresets/adapters/config/chain/ConfigStoreManager.h"
#include "secure/RankedMutex.h"

#include <unified/FeatureSetAdapter.h>
#include <unified/ProviderResetDataCallback.h>
#include <unified/UnifiedFactory.h>
#include <zel/PowerEventObserver.h>

#include <BootstrapStoreFactory.h>
#include <ConfigChainView.h>
#include <ConfigFeatureSet.h>
#include <ConfigServiceExport.h>
#include <ConfigStoreManager_Observer.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace ZelUnified {

class ConfigFileCacheTimer;
class ConfigServiceImpl;
class LocalFileConfigStore;
class ResetDataCallbackRegistry;

/// The feature set of the configuration service. Builds and rebuilds the chain, decides which stores a stop, a refresh,
/// a power-down and a reset keep, and passes the chain's announcements to the service. Always owned by shared pointers.
///
/// `adapterMutex` serialises start, stop, destroy, refresh and reset. It is the outermost lock, and re-entrant because
/// a reset calls refresh. Stop holds it while waiting for the services dispatcher, whose tasks may acquire it, so the
/// host stops the feature set on that dispatcher's thread. The other operations rely on the manager's locks and read
/// the started flag without a lock.
class LUMORA_CONFIG_API ConfigAdapter final : public FeatureSetAdapter,
                                              public ConfigFeatureSet,
                                              public ConfigStoreManager_Observer,
                                              public ZelSystemMonitor::PowerEventObserver,
                                              public ProviderResetDataCallback,
                                              public ConfigChainView,
                                              public BootstrapStoreFactory,
                                              public std::enable_shared_from_this<ConfigAdapter> {
public:
    /// Constructs an adapter without a factory and a chain, for the type's export. Its operations do nothing, with two
    /// exceptions: store-added observers must not be registered or unregistered, because there is no chain, and
    /// InvokeResetData() still deletes the user's files and policy.
    ConfigAdapter();
    /// Builds the whole chain, without starting the feature set. The chain calls the adapter before this constructor
    /// returns, so no class may derive from the adapter.
    explicit ConfigAdapter(std::shared_ptr<UnifiedFactory> factory);

    void StartFeatureSet(unsigned int id, std::shared_ptr<ServiceEventList> events) override;
    void StopFeatureSet(unsigned int id, std::shared_ptr<ServiceEventList> events) override;
    void Destroy() override;
    bool IsFeatureSetStarted(unsigned int id) override;
    bool IsFeatureSetProvisioned(unsigned int id) override;
    std::vector<unsigned int> GetFeatureSetDependencies(unsigned int id) override;

    void addConfigStore(std::shared_ptr<ConfigStore> store) override;
    bool removeConfigStore(const std::string& name) override;
    bool isConfigStorePresent(const std::string& name) override;
    void registerConfigStoreAddedObserver(std::shared_ptr<ConfigStoreAddedObserver> observer) override;
    void unregisterConfigStoreAddedObserver(std::shared_ptr<ConfigStoreAddedObserver> observer) override;
    void removeAllCachedConfigStores() override;
    bool getConfig(const std::wstring& key, std::wstring& value, std::wstring& configStoreName,
                   bool& valueFromLegacyKey, bool skipLocal) override;
    bool getConfig(const std::wstring& key, std::wstring& value, bool skipLocal) override;
    bool setConfig(ConfigMap values) override;
    bool setConfig(const std::wstring& key, const std::wstring& value) override;
    bool setInMemoryConfig(const std::wstring& key, const std::wstring& value) override;
    void setMdmConfig(const std::string& xml) override;
    void resetConfig(const std::wstring& key) override;
    bool isKeySensitive(const std::wstring& key) override;
    void setKeySensitive(const std::wstring& key) override;
    void refreshConfigFeatureSet() override;
    bool setUrlProvisioningData(std::wstring data) override;
    bool resetAllowUriProvisioningData() override;
    void resetConfigData(const std::string& storeName) override;
    void addServiceEvent(int code, ConfigServiceIdsEnum::ConfigServiceIds id,
                         ServiceEventSeverityEnum::ServiceEventSeverity severity) override;
    void getAllConfigForPRT(std::wstring& report) override;
    std::wstring getValueFromConfigStore(const std::string& storeName, const std::wstring& key) override;
    std::shared_ptr<ConfigStore> getConfigStoreByName(const std::string& name) override;

    std::vector<std::shared_ptr<ConfigStore>> getConfigStores() override;
    std::shared_ptr<ConfigStore> createBootstrapStore(const std::string& path, int priority) override;

    void onFireIfRequired(std::wstring key) override;
    void onSensitiveKeyAddedOrUpdated(std::wstring key) override;
    void onConfigAddedOrUpdated(std::wstring key, std::wstring value, std::wstring originalValue, bool isOverridden,
                                bool isDefined, std::wstring valueStoreName, std::wstring originalValueStoreName,
                                bool deferFire) override;

    /// Destroys the stores on a power-down; ignores other events.
    void onPowerEvent(ZelSystemMonitor::PowerEventTypeEnum::PowerEventType type) override;

    std::string getInterfaceName() override { return "ProviderResetDataCallback"; }
    /// Deletes the user's configuration and rebuilds the chain. Ignores `option`.
    void InvokeResetData(ResetDataOptionEnum::ResetDataOption option) override;

    /// Replaces a store and its cached copy, for stores of other services that update themselves. Does nothing unless
    /// started.
    void updateExistingConfigStore(const std::shared_ptr<ConfigStore>& store, const std::vector<std::wstring>& oldKeys);
    /// Computes the three enable flags.
    void SetEnabledServices();

private:
    /// Reads the flag without `adapterMutex`, which a stop holds while it waits for the services dispatcher: a task of
    /// that dispatcher may call the operations that check the flag.
    bool isStarted() const LUMORA_NO_THREAD_SAFETY_ANALYSIS { return featureSetStarted; }
    void startConfigFeatureSet();
    void stopConfigFeatureSet();
    void registerResetDataCallback();
    void unRegisterResetDataCallback();
    std::shared_ptr<ResetDataCallbackRegistry> getResetDataCallbackRegistry();

    void addInitialConfigStores();
    void addNecessaryStoresIfNotExist();
    std::shared_ptr<ConfigStore> makeDefaultsStore() const;
    std::shared_ptr<ConfigStore> makeInMemoryStore() const;
    enum class BackupTimer { Without, With };
    /// Returns the user's own store: the encrypted file or, in the SDK mode, a volatile store of the same name.
    std::shared_ptr<ConfigStore> makeUserStore(BackupTimer backupTimer);
    std::shared_ptr<ConfigStore> makeRegistryStore() const;

    void setSensitiveKeys();
    void removeValuesIfPolicySet();
    /// Empties the chain for a reset and waits for the writes of its files.
    void emptyChain() LUMORA_REQUIRES(adapterMutex);
    bool isSwitchedOff(std::wstring_view key) const;
    void setEnabledServicesFromCachedStores();

    /// Returns the service if the caller is on the services dispatcher's thread, the only one that may call it;
    /// otherwise null.
    ConfigServiceImpl* getServiceOfThisThread() const;
    /// Runs `call` on the services dispatcher's thread: immediately if the caller is on it, otherwise later, in a task
    /// named `taskName` + `taskSubject`. Passes the service to `call`. If the service no longer exists, the call is
    /// dropped.
    void callService(std::string_view taskName, std::wstring_view taskSubject,
                     std::function<void(ConfigServiceImpl&)> call);
    void notifyConfigKeyAliases();

    const std::shared_ptr<UnifiedFactory> unifiedFactory;
    zel::RankedMutex<std::recursive_mutex, zel::LockRank::Adapter> adapterMutex;
    std::atomic<bool> featureSetStarted LUMORA_GUARDED_BY(adapterMutex) = false;
    bool resetDataCallbackRegistered LUMORA_GUARDED_BY(adapterMutex) = false; ///< Never reset to false.
    const std::shared_ptr<ConfigStoreManager> configStoreManager;
    /// The user's file stores, for a reset. A queued write keeps a store alive after its removal from the chain.
    std::vector<std::weak_ptr<LocalFileConfigStore>> userFileStores LUMORA_GUARDED_BY(adapterMutex);
    std::shared_ptr<ConfigServiceImpl> configService;
    /// Shared with the tasks on the services dispatcher, which do not own the adapter.
    const std::shared_ptr<AnnouncementOrder> announcementOrder = std::make_shared<AnnouncementOrder>();
    std::shared_ptr<ConfigFileCacheTimer> configFileCacheTimer;
    CachedStores cachedStores{*this, configStoreManager};
    EnabledServices enabledServices{configStoreManager};
};

} // namespace ZelUnified
