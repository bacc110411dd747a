#pragma once

#include "ConfigChangeObservers.h"
#include "ConfigLookup.h"
#include "KeyAliases.h"
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

/// Owns the chain of stores: how they arrive, leave and are announced, how a key is read and written, what a reset
/// takes away. ConfigAdapter owns the one manager and is its only caller.
///
/// Any thread. `chainLock` serialises every operation on the chain but getStoreByName(), and is held while observers
/// are told and stores are called. Lock order, outermost first: `chainLock`, then the locks of the sensitive keys, of
/// the observers or of the store-added observers; then a store's own. Callbacks may read and change the chain.
class ConfigStoreManager {
public:
    using ChainLock = zel::RankedMutex<std::recursive_mutex, zel::LockRank::Chain>;
    using HeldChain = std::unique_lock<ChainLock>;

    explicit ConfigStoreManager(std::shared_ptr<UnifiedFactory> factory);

    /// Keeps other threads from the chain while it lives, for a write that depends on what was read before.
    HeldChain holdChain() const { return HeldChain(chainLock); }

    /// Puts the store in the chain and announces its keys: all changes first, then that they may be shown. A store of a
    /// known name takes the place of the old one. A null store is ignored.
    void addStore(const std::shared_ptr<ConfigStore>& store);
    /// Replaces the store of that name, if there is one. `oldKeys` are announced where the new version lacks them.
    void updateExistingConfigStore(const std::shared_ptr<ConfigStore>& store, const std::vector<std::wstring>& oldKeys);
    /// Takes the store out, deletes its cached copy and announces its keys. False when there is none.
    bool removeStoreWithSameName(const std::string& name);
    /// Drops every store whose `isLocal` is false and announces its keys.
    void removeNonLocalStores();
    /// Calls `destroy` on every store; they stay in the chain.
    void destroyStores();

    bool hasStoreWithName(const std::string& name) const;
    /// Empty when there is none. Answers while another thread holds the chain.
    std::shared_ptr<ConfigStore> getStoreByName(const std::string& name) const;

    void registerConfigStoreAddedObserver(const std::shared_ptr<ConfigStoreAddedObserver>& observer);
    void unregisterConfigStoreAddedObserver(const std::shared_ptr<ConfigStoreAddedObserver>& observer);
    /// Not owned: the observer must outlive the manager.
    void addObserver(ConfigStoreManager_Observer* observer);

    /// Tells the observers every time. Called without the chain's lock: what they do then must not need it.
    void setKeySensitive(const std::wstring& key);
    bool isSensitiveKey(const std::wstring& key) const;
    /// Old key names to new ones.
    ConfigMap getKeyAliases() const;

    /// The value in force. `skipLocal` leaves out the writable stores; a filter leaves out all stores but the one it
    /// names. `valueFromLegacyKey` is only ever set. On a miss `value` is empty (but for the FIPS override), the rest
    /// as it was.
    bool getValue(const std::wstring& key, std::wstring& value, std::wstring& configStoreName, bool& valueFromLegacyKey,
                  bool skipLocal, const std::string& storeFilter) const;
    bool getValue(const std::wstring& key, std::wstring& value) const;
    bool getValue(const std::wstring& key, std::wstring& value, const std::string& storeFilter) const;
    /// What one store says; empty on a miss.
    std::wstring getValue(const std::string& storeFilter, const std::wstring& key) const;
    /// What an administrator's source says beneath the user's settings; the result is whether the user overrides it.
    bool getOriginalValue(const std::wstring& key, std::wstring& originalValue, std::wstring& originalValueStoreName,
                          bool& fromLegacyKey) const;

    /// Writes to the first writable store but the volatile one, and persists it later. The store's answer; false
    /// without such a store.
    bool storeValue(const std::wstring& key, const std::wstring& value);
    /// Writes every pair to every writable store but the volatile one. False without such a store.
    bool storeValue(const ConfigMap& values);
    /// Writes to the volatile store. False without one.
    bool setInMemoryValue(const std::wstring& key, const std::wstring& value);
    /// Removes the key under its old and new names from every writable store. True when anything went.
    bool removeValue(const std::wstring& key);
    /// Makes a store of the settings in a provisioning URL and forbids another one. False when the URL holds none.
    bool setUrlProvisioningData(const std::wstring& url);

    /// Takes away and empties every store but the five that a reset spares.
    void resetConfigData();
    /// Empties one store, exactly named. Nothing is announced.
    void resetConfigData(const std::string& storeName);
    /// Deletes the cached copies on disk.
    void removeAllCachedStores();
    /// Deletes a file of the cache folder, and the ".dat" twin of an ".xml" file. True when there was one.
    bool removeCachedFiles(const std::string& fileName);

    /// Replaces `out` by the XML text of a problem report. The chain is held for the stores' part only.
    void getConfigForPRT(std::wstring& out) const;

private:
    void updateConfigStore(const std::shared_ptr<ConfigStore>& store);
    void removeStoreAndCachedCopy(const std::string& name);
    /// The chain as logs show it.
    std::string describeChain() const;
    void persistLater(const std::shared_ptr<ConfigStore>& store) const;

    void refreshStoreKeys(const std::shared_ptr<ConfigStore>& store);
    void refreshKeys(const KeyList& keys);
    /// Works out what is now true of the key and tells the observers: the only source of onConfigAddedOrUpdated().
    /// The result is the key's new name if it is an old one, else null.
    const std::wstring* fireConfigChange(const std::wstring& key, bool deferFire);
    ConfigChange readConfigChange(const FoldedKey& key) const;
    /// Whether any store holds the key under exactly this name.
    bool isHeld(const std::wstring& key) const;
    /// As the public ones. The store's name is asked for only where `configStoreName` is not null.
    bool getValue(const FoldedKey& key, std::wstring& value, std::wstring* configStoreName, bool& valueFromLegacyKey,
                  bool skipLocal, const std::string& storeFilter) const;
    /// Reads all of `change` in one walk and logs the lookup. Returns false and reads nothing if two walks are needed.
    bool getValue(const FoldedKey& key, ConfigChange& change) const;

    /// Returns the debug line of a lookup, or nothing if debug logging is off.
    std::optional<std::wstring> describeLookup(const FoldedKey& key, std::wstring_view value, bool found,
                                               std::wstring_view storeName, ConfigLookup::FoundUnder foundUnder,
                                               bool skipLocal) const;

    mutable ChainLock chainLock; ///< Recursive: updates go through addStore(), callbacks read the chain.
    StoreChain configStores;     ///< Changed under `chainLock`. No two stores of one name.
    SensitiveKeys sensitiveKeys;
    ConfigChangeObservers observers;
    const std::shared_ptr<UnifiedFactory> unifiedFactory;
    const KeyAliases keyAliases;
    const ConfigLookup lookup{configStores, keyAliases};
    StoreAddedObservers storeAddedObservers;
};

} // namespace ZelUnified
