#pragma once

#include "ConfigValueImpl.h"
#include "base/ConfigServiceBaseImpl.h"
#include "base/SharedTexts.h"
#include "table/KeyIndex.h"
#include "table/KeySuccessors.h"

#include <unified/FeatureSetReadyListener.h>

#include <ConfigMap.h>

#include <list>
#include <map>
#include <memory>
#include <string>

namespace ZelUnified {

class ConfigFeatureSet;
class UnifiedFactory;

/// The public service. Reads are answered from records in memory, which the adapter keeps up to date; everything that
/// touches a store is forwarded to ConfigFeatureSet. It starts inert and comes alive when the adapter pushes to it.
/// All containers belong to the services dispatcher's thread; there is no lock.
class ConfigServiceImpl final : public ConfigServiceBaseImpl, public FeatureSetReadyListener {
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
    /// Knows the keys of updateSensitiveKeyList() only; the feature set is not asked.
    bool isKeySensitive(std::wstring key) override;
    bool setUrlProvisioningData(std::wstring data) override;
    bool resetAllowUriProvisioningData() override;
    std::wstring getAllConfigForPRT() override;
    std::wstring getValueFromConfigStore(std::string storeName, std::wstring key) override;

    /// Says so in a debug line; the user is told by a service event.
    virtual void configDownloadFailed();
    /// Lets go of all records. What clients hold lives on and is updated no more; sensitive keys and aliases stay.
    virtual void reset();
    virtual void refreshConfigFeatureSet();

    /// Takes what the store chain resolved for the key. With `deferFire` observers hear of it at FireIfRequired().
    void OnConfigChanged(std::wstring key, std::wstring value, std::wstring originalValue, bool isOverridden,
                         bool isDefined, std::wstring valueStoreName, std::wstring originalValueStoreName,
                         bool deferFire);
    void FireIfRequired(std::wstring key);
    /// Replaces the table of old names: each is looked up under its new one first.
    void setupConfigKeyAliases(ConfigMap aliases);
    /// From here on the key's value is hidden in logs. Nothing takes that back.
    void updateSensitiveKeyList(std::wstring key);

    void onFeatureSetReady(bool ready) override;

private:
    using ConfigValueMap = std::map<std::wstring, std::shared_ptr<ConfigValueImpl>, caseInsensitiveMapComparator>;

    void initialize(const std::shared_ptr<UnifiedFactory>& factory);
    std::shared_ptr<ConfigFeatureSet> getFeatureSet() const;

    /// The record of the key, looked up under its new name first; made under the new name when there is none.
    std::shared_ptr<ConfigValueImpl> findConfig(const FoldedKey& key);
    /// The record of exactly this key, empty when there is none.
    std::shared_ptr<ConfigValueImpl> findConfigFromKey(const FoldedKey& key);
    std::shared_ptr<ConfigValueImpl> createConfig(const FoldedKey& key);
    std::shared_ptr<ConfigValueImpl> createConfig(const std::wstring& key, std::wstring value,
                                                  std::wstring originalValue, bool isOverridden,
                                                  SharedText valueStoreName, SharedText originalValueStoreName);
    /// Inserts the record, or replaces the one of the same key.
    void keep(const FoldedKey& key, std::shared_ptr<ConfigValueImpl> record);
    std::wstring describeAliasLookup(const std::wstring& key, const std::wstring& alias, ConfigValueImpl& record);
    void appendSettings(std::wstring& report, bool defined);

    ConfigValueMap configValues;
    /// Of the entries of `configValues`. It compares the map's keys, because the key of a record can change.
    KeyIndex<ConfigValueMap::value_type> configValuesIndex;
    SharedTexts storeNames; ///< What the records share.
    ConfigKeySet sensitiveKeys;
    KeySuccessors keyAliases;
    std::shared_ptr<UnifiedFactory> unifiedFactory;
};

} // namespace ZelUnified
