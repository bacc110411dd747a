#pragma once

#include "ConfigChangeObservers.h"
#include "ConfigLookup.h"
#include "RenamedKeys.h"
#include "SensitiveKeys.h"
#include "StoreAddedObservers.h"
#include "StoreChain.h"
#include "secure/RankedMutex.h"

#include <unified/UnifiedFactory.h>

#include <ConfigMap.h>
#include <ConfigStore.h>
#include <ConfigStoreAddedObserver.h>
#include <ConfigStoreManager_Observer.h>

#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace ZelUnified {

/// Owns the chain of stores: adds, removes and announces stores, reads and writes keys, and resets the chain.
/// ConfigAdapter owns the only manager and is its only caller.
///
/// Any thread. `chainLock` serialises every operation on the chain except getStoreByName(), and is held while observers
/// and stores are called. Lock order, outermost first: `chainLock`; then the lock of the sensitive keys, of the
/// observers or of the store-added observers; then a store's own. Callbacks may read and change the chain.
class ConfigStoreManager {
public:
    using ChainLock = zel::RankedMutex<std::recursive_mutex, zel::LockRank::Chain>;
    using HeldChain = std::unique_lock<ChainLock>;

    explicit ConfigStoreManager(std::shared_ptr<UnifiedFactory> factory);

    /// Locks the chain for the lifetime of the returned object, so that a write can depend on an earlier read.
    HeldChain holdChain() const { return HeldChain(chainLock); }

    /// Inserts the store into the chain, or replaces the store of the same name, and announces its keys: first all
    /// changes, then that they may be shown. Ignores a null store.
    void addStore(const std::shared_ptr<ConfigStore>& store);
    /// Replaces the store of that name, if there is one. Also announces those of `oldKeys` that the new version does
    /// not contain.
    void updateExistingConfigStore(const std::shared_ptr<ConfigStore>& store, const std::vector<std::wstring>& oldKeys);
    /// Removes the store, deletes its cached copy and announces its keys. Returns false if there is no such store.
    bool removeStoreWithSameName(const std::string& name);
    /// Removes every store whose `isLocal` is false and announces its keys.
    void removeNonLocalStores();
    /// Calls `destroy` on every store. The stores remain in the chain.
    void destroyStores();

    bool hasStoreWithName(const std::string& name) const;
    /// Returns the store of that name, or null if there is none. Does not acquire `chainLock`, so a caller
    /// never waits for an operation of the chain; the walk uses an immutable copy of the chain.
    std::shared_ptr<ConfigStore> getStoreByName(const std::string& name) const LUMORA_NO_THREAD_SAFETY_ANALYSIS;

    /// Returns the stores in chain order. Does not wait for `chainLock`; what it copies is immutable.
    StoreChain::Stores getStores() const LUMORA_NO_THREAD_SAFETY_ANALYSIS { return *configStores.getStores(); }

    void registerConfigStoreAddedObserver(const std::shared_ptr<ConfigStoreAddedObserver>& observer);
    void unregisterConfigStoreAddedObserver(const std::shared_ptr<ConfigStoreAddedObserver>& observer);
    /// Registers the observer, which is not owned and must outlive the manager.
    void addObserver(ConfigStoreManager_Observer* observer);

    /// Marks the key as sensitive and notifies the observers, each time. The observers are called without the chain's
    /// lock, so they must not use the chain.
    void setKeySensitive(const std::wstring& key);
    bool isSensitiveKey(const std::wstring& key) const;
    /// Returns the new name of each old key name.
    ConfigMap getKeyAliases() const;

    /// Returns true and sets `value` to the effective value and `configStoreName` to its store. `skipLocal` leaves out
    /// the writable stores; a non-empty `storeFilter` leaves out all stores except the one it names.
    /// `valueFromLegacyKey` is only ever set to true. On a miss returns false, clears `value` (the FIPS override may
    /// still set it) and leaves the rest unchanged.
    bool getValue(const std::wstring& key, std::wstring& value, std::wstring& configStoreName, bool& valueFromLegacyKey,
                  bool skipLocal, const std::string& storeFilter) const;
    bool getValue(const std::wstring& key, std::wstring& value) const;
    bool getValue(const std::wstring& key, std::wstring& value, const std::string& storeFilter) const;
    /// Returns the value that one store holds, or an empty string on a miss.
    std::wstring getValue(const std::string& storeFilter, const std::wstring& key) const;
    /// Reads the administrator's value, which applies without the user's settings. Returns true if the user overrides
    /// it.
    bool getOriginalValue(const std::wstring& key, std::wstring& originalValue, std::wstring& originalValueStoreName,
                          bool& fromLegacyKey) const;

    /// Writes to the first writable store except the volatile one, and persists that store later. Returns the store's
    /// result, or false if there is no such store.
    bool storeValue(const std::wstring& key, const std::wstring& value);
    /// Writes every pair to every writable store except the volatile one. Returns false if there is no such store.
    bool storeValue(const ConfigMap& values);
    /// Writes to the volatile store. Returns false if there is none.
    bool setInMemoryValue(const std::wstring& key, const std::wstring& value);
    /// Removes the key under its old and new names from every writable store. Returns true if any store contained it.
    bool removeValue(const std::wstring& key);
    /// Adds a store with the settings of a provisioning URL and forbids another such URL. Returns false if the URL
    /// contains no settings.
    bool setUrlProvisioningData(const std::wstring& url);

    /// Removes and clears every store except the five that a reset keeps.
    void resetConfigData();
    /// Clears the store of that name (case-sensitive). Observers are not notified.
    void resetConfigData(const std::string& storeName);
    /// Deletes the cached copies on disk.
    void removeAllCachedStores();
    /// Deletes a file of the cache folder, and the ".dat" twin of an ".xml" file. Returns true if either existed.
    bool removeCachedFiles(const std::string& fileName);

    /// Replaces `out` with the XML text of a problem report. Holds the chain's lock only while it reads the stores.
    void getConfigForPRT(std::wstring& out) const;

private:
    void updateConfigStore(const std::shared_ptr<ConfigStore>& store);
    void removeStoreAndCachedCopy(const std::string& name);
    void persistLater(const std::shared_ptr<ConfigStore>& store) const;

    void refreshStoreKeys(const std::shared_ptr<ConfigStore>& store) LUMORA_REQUIRES(chainLock);
    void refreshKeys(const KeyList& keys) LUMORA_REQUIRES(chainLock);
    /// Reads the new state of the key and notifies the observers; the only source of onConfigAddedOrUpdated(). Returns
    /// the key's new name if `key` is an old one, otherwise null.
    const std::wstring* fireConfigChange(const std::wstring& key, bool deferFire);
    ConfigChange readConfigChange(const FoldedKey& key) const LUMORA_REQUIRES(chainLock);
    /// Returns true if any store contains the key under exactly this name.
    bool isHeld(const std::wstring& key) const LUMORA_REQUIRES(chainLock);
    /// Behaves like the public overloads. Asks for the store's name only if `configStoreName` is not null.
    bool getValue(const FoldedKey& key, std::wstring& value, std::wstring* configStoreName, bool& valueFromLegacyKey,
                  bool skipLocal, const std::string& storeFilter) const;

    /// Returns the debug line of a lookup, or nothing if debug logging is off.
    std::optional<std::wstring> describeLookup(const FoldedKey& key, std::wstring_view value, bool found,
                                               std::wstring_view storeName, ConfigLookup::FoundUnder foundUnder,
                                               bool skipLocal) const;

    mutable ChainLock chainLock; ///< Recursive: updates go through addStore(), callbacks read the chain.
    StoreChain configStores LUMORA_GUARDED_BY(chainLock); ///< Names are unique.
    SensitiveKeys sensitiveKeys;
    ConfigChangeObservers observers;
    const std::shared_ptr<UnifiedFactory> unifiedFactory;
    const RenamedKeys renamedKeys;
    const ConfigLookup lookup LUMORA_GUARDED_BY(chainLock){configStores, renamedKeys};
    StoreAddedObservers storeAddedObservers;
};

} // namespace ZelUnified
