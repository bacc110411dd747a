#pragma once

#include "featuresets/adapters/config/chain/ConfigStoreManager.h"
#include "logging/LogPlace.h"

#include <ConfigFeatureSet.h>
#include <ConfigStore.h>

#include <list>
#include <memory>
#include <string>

namespace ZelUnified {

/// Keeps copies of the stores that live only while their service has delivered them, so that the next run has their
/// values at once: a file for each copy, and the record of names and priorities in the configuration itself.
/// Reads and writes go through the adapter where its guard is to speak, else straight to the manager.
class CachedStores {
public:
    /// The feature set owns this object.
    CachedStores(ConfigFeatureSet& featureSet, std::shared_ptr<ConfigStoreManager> storeManager)
        : adapter(featureSet), configStoreManager(std::move(storeManager)) {}

    /// Restores every recorded copy, the presence store last, and the copy made by a provisioning URL.
    void InitialiseCachedConfigStores();
    /// Restores every copy of a record given as text.
    void addCachedConfigStores(const std::wstring& record);
    /// Writes the copy of a store that has just arrived and records it.
    void cacheStoreOnConfigStoreAdded(const std::shared_ptr<ConfigStore>& store);
    void updateCacheStorePriority(const std::string& name, int priority);
    /// Writes the record even when the name is not in it.
    void removeFromCachedStorePriorityMap(const std::wstring& name);
    void removeOldCacheConfigStores(std::shared_ptr<std::list<std::string>>) {}

    /// In the SDK mode nothing is kept on disk. Never remembered: a store that holds the key may arrive.
    bool getLumoraSDKMode();

private:
    void addCachedConfigStore(const std::string& name, int priority);
    void addPresenceStore(const std::wstring& priority);
    void addUrlProvisioningStore(const LogPlace& place);
    static void copyAllStoreValues(const std::shared_ptr<ConfigStore>& store, ConfigMap& values);

    ConfigFeatureSet& adapter;
    const std::shared_ptr<ConfigStoreManager> configStoreManager; ///< Null in an adapter without a factory.
};

} // namespace ZelUnified
