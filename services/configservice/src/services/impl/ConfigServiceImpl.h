#pragma once

#include "ConfigValueImpl.h"
#include "RecordObservers.h"
#include "base/ConfigServiceBaseImpl.h"
#include "base/SharedTexts.h"
#include "table/KeyIndex.h"
#include "table/KeyNameMap.h"

#include <unified/FeatureSetReadyListener.h>

#include <ConfigMap.h>
#include <ConfigRecords.h>

#include <cstddef>
#include <deque>
#include <list>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace ZelUnified {

class ConfigFeatureSet;
class UnifiedFactory;

/// Implements the public service. Reads return records in memory, which the adapter updates; every operation on a store
/// is forwarded to ConfigFeatureSet. The service has no values until the adapter calls it. All containers belong to the
/// services dispatcher's thread; there is no lock.
class ConfigServiceImpl final : public ConfigServiceBaseImpl, public FeatureSetReadyListener, public ConfigRecords {
public:
    explicit ConfigServiceImpl(const std::shared_ptr<UnifiedFactory>& factory);

    std::shared_ptr<ConfigValue> getConfig(std::wstring key) override;
    void setConfig(std::wstring key, std::wstring value) override;
    void setInMemoryConfig(std::wstring key, std::wstring value) override;
    void setMdmConfig(std::string data) override;
    std::shared_ptr<std::list<std::shared_ptr<ConfigValue>>> getAllConfig() override;
    void resetConfig(std::wstring key) override;
    bool removeConfigStoreAndCache(std::wstring storeName) override;
    void removeAllCachedConfigStores() override;
    void logConfig() override;
    void setKeySensitive(std::wstring key) override;
    /// Returns true only for keys passed to updateSensitiveKeyList(). Does not ask the feature set.
    bool isKeySensitive(std::wstring key) override;
    bool setUrlProvisioningData(std::wstring data) override;
    bool resetAllowUriProvisioningData() override;
    std::wstring getAllConfigForPRT() override;
    std::wstring getValueFromConfigStore(std::string storeName, std::wstring key) override;

    /// Logs a debug line. A service event informs the user.
    virtual void configDownloadFailed();
    /// Removes all records. Records that clients hold remain valid but are no longer updated. Sensitive keys and
    /// old key names remain.
    virtual void reset();
    virtual void refreshConfigFeatureSet();

    /// Updates the record with the result of the store chain. With `deferFire` observers are notified by
    /// FireIfRequired().
    void OnConfigChanged(std::wstring key, std::wstring value, std::wstring originalValue, bool isOverridden,
                         bool isDefined, std::wstring valueStoreName, std::wstring originalValueStoreName,
                         bool deferFire);
    void FireIfRequired(std::wstring key);
    /// Replaces the table of old key names. An old name is looked up under its new name first.
    void setupConfigKeyAliases(ConfigMap newNameOf);
    /// Hides the key's value in logs from now on. This cannot be undone.
    void updateSensitiveKeyList(std::wstring key);

    void onFeatureSetReady(bool ready) override;

    std::shared_ptr<ConfigValue> findRecord(const std::wstring& key) override;
    std::vector<std::shared_ptr<ConfigValue>> getRecordsAfter(const std::wstring& key, std::size_t count) override;
    void addRecordObserver(std::weak_ptr<ConfigRecordObserver> observer) override;
    void removeRecordObserver(std::weak_ptr<ConfigRecordObserver> observer) override;

private:
    /// The key with which the record was created, in lower case for fast comparison, and the record. The key of a
    /// record can change.
    using Entry = std::pair<const std::wstring, std::shared_ptr<ConfigValueImpl>>;

    void initialize(const std::shared_ptr<UnifiedFactory>& factory);
    std::shared_ptr<ConfigFeatureSet> getFeatureSet() const;

    /// Returns the record of the key, looked up under its new name first. If there is none, creates it under the new
    /// name.
    std::shared_ptr<ConfigValueImpl> findConfig(const FoldedKey& key);
    /// Returns the record of exactly this key, or null if there is none.
    std::shared_ptr<ConfigValueImpl> findConfigFromKey(const FoldedKey& key);
    std::shared_ptr<ConfigValueImpl> createConfig(const FoldedKey& key);
    std::shared_ptr<ConfigValueImpl> createConfig(const std::wstring& key, std::wstring value,
                                                  std::wstring originalValue, bool isOverridden,
                                                  SharedText valueStoreName, SharedText originalValueStoreName);
    /// Inserts the record, or replaces the one of the same key.
    void insertOrReplace(const FoldedKey& key, std::shared_ptr<ConfigValueImpl> record);
    std::wstring describeLookupByOldName(const std::wstring& key, const std::wstring& newName, ConfigValueImpl& record);
    void appendSettings(std::wstring& report, bool defined);
    /// Returns the entries in key order; valid until a record is created. Sorts those created since the last call.
    const std::vector<const Entry*>& listInOrder();

    /// In the order of their creation: with a map, which keeps them in key order, a start of the service takes 15 %
    /// more instructions at 5,000 keys in a document.
    std::deque<Entry> configValues;
    /// Refers to the entries of `configValues`, and compares their keys.
    KeyIndex<Entry> configValuesIndex;
    std::vector<const Entry*> orderedValues; ///< The entries at the last call of listInOrder().
    SharedTexts storeNames;                  ///< Shared by the records.
    ConfigKeySet sensitiveKeys;
    RecordObservers recordObservers;
    KeyNameMap newNames; ///< Found by old name.
    std::shared_ptr<UnifiedFactory> unifiedFactory;
};

} // namespace ZelUnified
