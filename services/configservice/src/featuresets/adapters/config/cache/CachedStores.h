#pragma once

#include "featuresets/adapters/config/chain/ConfigStoreManager.h"
#include "logging/LogPlace.h"

#include <ConfigFeatureSet.h>
#include <ConfigStore.h>

#include <list>
#include <memory>
#include <string>

namespace ZelUnified {

/// Keeps copies of the stores that other services deliver, so that the next run has their values from the start: a file
/// for each copy, and in the configuration a record of names and priorities. Uses the adapter's operations where its
/// check for a start must apply, otherwise the manager's.
class CachedStores {
public:
    /// `featureSet` must own this object.
    CachedStores(ConfigFeatureSet& featureSet, std::shared_ptr<ConfigStoreManager> storeManager)
        : adapter(featureSet), configStoreManager(std::move(storeManager)) {}

    /// Restores every recorded copy, the presence store last, and the copy written for a provisioning URL.
    void InitialiseCachedConfigStores();
    /// Restores every copy listed in `record`.
    void addCachedConfigStores(const std::wstring& record);
    /// Writes and records the copy of a store that has just been added.
    void cacheStoreOnConfigStoreAdded(const std::shared_ptr<ConfigStore>& store);
    void updateCacheStorePriority(const std::string& name, int priority);
    /// Removes the name from the record. Writes the record even if it does not contain the name.
    void removeFromCachedStorePriorityMap(const std::wstring& name);
    void removeOldCacheConfigStores(std::shared_ptr<std::list<std::string>>) {}

    /// Returns true in the SDK mode, which keeps nothing on disk. Not cached, because a store with this key may be
    /// added at any time.
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
