#pragma once

#include <unified/FeatureSet.h>
#include <unified/ServiceEventSeverity.h>

#include <ConfigMap.h>
#include <ConfigServiceIds.h>
#include <ConfigStore.h>
#include <ConfigStoreAddedObserver.h>

#include <memory>
#include <string>

namespace ZelUnified {

/// The store chain as other services see it. The order of the operations is contract. Any thread may call; a change is
/// announced to the records on the services dispatcher's thread, at once when the caller stands on it.
/// Operations marked "started" log an error before the feature set is started.
class LUMORA_CONFIG_API ConfigFeatureSet : public FeatureSet {
public:
    ~ConfigFeatureSet() override = default;

    /// Puts the store in the chain, or in the place of the one that bears its name. Started, refuses otherwise.
    virtual void addConfigStore(std::shared_ptr<ConfigStore> store) = 0;
    /// Takes the store and its cached copy out. False when there was neither. Started, refuses otherwise.
    virtual bool removeConfigStore(const std::string& name) = 0;
    /// Started, refuses otherwise.
    virtual bool isConfigStorePresent(const std::string& name) = 0;
    /// Held weakly. One that is registered twice is told twice.
    virtual void registerConfigStoreAddedObserver(std::shared_ptr<ConfigStoreAddedObserver> observer) = 0;
    /// Drops every registration of the observer.
    virtual void unregisterConfigStoreAddedObserver(std::shared_ptr<ConfigStoreAddedObserver> observer) = 0;
    /// Deletes the cached copies on disk. Started.
    virtual void removeAllCachedConfigStores() = 0;

    /// The value in force, the store that gave it, and whether it was found under the key's old name (which is only
    /// ever set: pass a cleared flag). `skipLocal` leaves out the writable stores. False and an empty value on a miss.
    /// Started.
    virtual bool getConfig(const std::wstring& key, std::wstring& value, std::wstring& configStoreName,
                           bool& valueFromLegacyKey, bool skipLocal) = 0;
    virtual bool getConfig(const std::wstring& key, std::wstring& value, bool skipLocal) = 0;

    /// Writes every pair to every writable store but the volatile one. False when there is none.
    virtual bool setConfig(ConfigMap values) = 0;
    /// Writes to the first writable store but the volatile one. False when there is none or it refuses.
    virtual bool setConfig(const std::wstring& key, const std::wstring& value) = 0;
    /// Sets a value for the length of this run. Started.
    virtual bool setInMemoryConfig(const std::wstring& key, const std::wstring& value) = 0;
    /// Replaces what device management pushed, an XML document in UTF-8.
    virtual void setMdmConfig(const std::string& xml) = 0;
    /// Removes the key, under its old and new names, from every writable store.
    virtual void resetConfig(const std::wstring& key) = 0;
    virtual bool isKeySensitive(const std::wstring& key) = 0;
    /// The key's value never shows in a log or a report from here on.
    virtual void setKeySensitive(const std::wstring& key) = 0;
    /// Drops and re-reads the stores that are not local.
    virtual void refreshConfigFeatureSet() = 0;

    /// Takes the settings of a provisioning URL. False when it holds none, or when provisioning is not allowed.
    virtual bool setUrlProvisioningData(std::wstring data) = 0;
    /// Allows another provisioning URL. False when the user's settings do not forbid it.
    virtual bool resetAllowUriProvisioningData() = 0;
    /// Empties the store of that name, exactly spelt. Nothing is announced.
    virtual void resetConfigData(const std::string& storeName) = 0;
    /// Reports an event of the service to the user, through the host.
    virtual void addServiceEvent(int code, ConfigServiceIdsEnum::ConfigServiceIds id,
                                 ServiceEventSeverityEnum::ServiceEventSeverity severity) = 0;
    /// Replaces `report` by the XML text of a problem report. Started.
    virtual void getAllConfigForPRT(std::wstring& report) = 0;
    /// What one store says of the key; empty when it says nothing. Started.
    virtual std::wstring getValueFromConfigStore(const std::string& storeName, const std::wstring& key) = 0;
    /// Empty when no store bears the name, ignoring case. Started.
    virtual std::shared_ptr<ConfigStore> getConfigStoreByName(const std::string& name) = 0;
};

} // namespace ZelUnified
