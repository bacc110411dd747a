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

/// The interface of the store chain for other services. The order of the operations is part of the contract. Any thread
/// may call. A change notifies the records on the services dispatcher's thread, immediately if the caller is on that
/// thread.
///
/// Before the feature set is started, operations marked "Requires start" log an error, do nothing and return false;
/// operations marked "Expects start" log an error and run.
class LUMORA_CONFIG_API ConfigFeatureSet : public FeatureSet {
public:
    ~ConfigFeatureSet() override = default;

    /// Inserts the store into the chain, or replaces the store of the same name. Requires start.
    virtual void addConfigStore(std::shared_ptr<ConfigStore> store) = 0;
    /// Removes the store and its cached copy. Returns false if neither existed. Requires start.
    virtual bool removeConfigStore(const std::string& name) = 0;
    /// Returns true if the chain contains a store of that name. Requires start.
    virtual bool isConfigStorePresent(const std::string& name) = 0;
    /// Registers the observer; the chain holds a weak reference. An observer that registers twice is called twice.
    virtual void registerConfigStoreAddedObserver(std::shared_ptr<ConfigStoreAddedObserver> observer) = 0;
    /// Removes every registration of the observer.
    virtual void unregisterConfigStoreAddedObserver(std::shared_ptr<ConfigStoreAddedObserver> observer) = 0;
    /// Deletes the cached copies on disk. Expects start.
    virtual void removeAllCachedConfigStores() = 0;

    /// Returns true and sets `value` to the effective value and `configStoreName` to the store that holds it. On a miss
    /// returns false and clears `value`. Sets `valueFromLegacyKey` to true if the value was found under the key's old
    /// name; never sets it to false, so pass a flag that is false. `skipLocal` leaves out the writable stores. Expects
    /// start.
    virtual bool getConfig(const std::wstring& key, std::wstring& value, std::wstring& configStoreName,
                           bool& valueFromLegacyKey, bool skipLocal) = 0;
    virtual bool getConfig(const std::wstring& key, std::wstring& value, bool skipLocal) = 0;

    /// Writes every pair to every writable store except the volatile one. Returns false if there is no such store.
    virtual bool setConfig(ConfigMap values) = 0;
    /// Writes to the first writable store except the volatile one. Returns false if there is no such store or the store
    /// rejects the write.
    virtual bool setConfig(const std::wstring& key, const std::wstring& value) = 0;
    /// Sets a value in the store in memory, which a refresh, a reset and the end of the process empty. Expects start.
    virtual bool setInMemoryConfig(const std::wstring& key, const std::wstring& value) = 0;
    /// Replaces the settings from device management with `xml`, an XML document in UTF-8.
    virtual void setMdmConfig(const std::string& xml) = 0;
    /// Removes the key, under its old and new names, from every writable store.
    virtual void resetConfig(const std::wstring& key) = 0;
    virtual bool isKeySensitive(const std::wstring& key) = 0;
    /// Marks the key as sensitive: from then on, logs mask its value and problem reports leave the key out. Exceptions:
    /// reads by another name of the key, and policies when they are read, unless the name contains
    /// "connectionpassword".
    virtual void setKeySensitive(const std::wstring& key) = 0;
    /// Removes the stores that are not local and reads them again.
    virtual void refreshConfigFeatureSet() = 0;

    /// Adds the settings of a provisioning URL. Returns false if the URL contains none or if provisioning is not
    /// allowed.
    virtual bool setUrlProvisioningData(std::wstring data) = 0;
    /// Allows another provisioning URL. Returns false if the user's settings do not forbid one.
    virtual bool resetAllowUriProvisioningData() = 0;
    /// Removes all values of the store of that name, compared case-sensitively. Observers are not notified.
    virtual void resetConfigData(const std::string& storeName) = 0;
    /// Reports an event of the service to the user, through the host.
    virtual void addServiceEvent(int code, ConfigServiceIdsEnum::ConfigServiceIds id,
                                 ServiceEventSeverityEnum::ServiceEventSeverity severity) = 0;
    /// Replaces `report` with the XML text of a problem report. Expects start.
    virtual void getAllConfigForPRT(std::wstring& report) = 0;
    /// Returns the value that one store holds for the key, or an empty string if it holds none. Expects start.
    virtual std::wstring getValueFromConfigStore(const std::string& storeName, const std::wstring& key) = 0;
    /// Returns the store of that name (case-insensitive), or null if there is none. Expects start.
    virtual std::shared_ptr<ConfigStore> getConfigStoreByName(const std::string& name) = 0;
};

} // namespace ZelUnified
