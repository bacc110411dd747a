#pragma once

#include <unified/UnifiedService.h>

#include <ConfigServiceNotifiers.h>
#include <ConfigServiceObserver.h>
#include <ConfigValue.h>

#include <list>
#include <memory>
#include <string>

namespace ZelUnified {

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Woverloaded-virtual" // as in UnifiedService
#endif

/// The configuration service, registered with the factory under 1300. Reads return records from memory; writes go to
/// the store chain. The order of the operations is part of the contract.
///
/// Call it on the services dispatcher's thread unless an operation says otherwise. On another thread a call throws
/// UpdateAccessError and changes nothing. Without a feature set, operations that need one do nothing and return false
/// or an empty string.
class LUMORA_CONFIG_API ConfigService : public virtual UnifiedService {
public:
    /// Any thread may call the observer operations and getConfigServiceNotifiers().
    virtual void addObserver(std::weak_ptr<ConfigServiceObserver> observer) = 0;
    virtual void removeObserver(std::weak_ptr<ConfigServiceObserver> observer) = 0;
    virtual std::shared_ptr<ConfigServiceNotifiers> getConfigServiceNotifiers() = 0;
    /// Returns true once the host has reported the feature set as started.
    virtual bool getConfigReady() = 0;
    /// Returns the record of the key; never null. A key that no store ever held has an undefined record.
    virtual std::shared_ptr<ConfigValue> getConfig(std::wstring key) = 0;
    /// Writes a value to the store chain, where a store of higher priority may override it. The record changes when the
    /// chain reports the change.
    virtual void setConfig(std::wstring key, std::wstring value) = 0;
    /// Sets a value in the store in memory, which a refresh, a reset and the end of the process empty.
    virtual void setInMemoryConfig(std::wstring key, std::wstring value) = 0;
    /// Replaces the settings from device management with `data`, an XML document in UTF-8.
    virtual void setMdmConfig(std::string data) = 0;
    /// Returns every record in key order, including undefined ones. Does not check the thread, but only the services
    /// dispatcher's thread may call it.
    virtual std::shared_ptr<std::list<std::shared_ptr<ConfigValue>>> getAllConfig() = 0;
    /// Removes the key's values from the writable stores, under its old and new names.
    virtual void resetConfig(std::wstring key) = 0;
    /// Removes the store and its cached copy. Returns false if neither existed.
    virtual bool removeConfigStoreAndCache(std::wstring storeName) = 0;
    /// Deletes the cached copies on disk.
    virtual void removeAllCachedConfigStores() = 0;
    /// Writes all records to the log as one entry.
    virtual void logConfig() = 0;
    /// Marks the key as sensitive: from then on, logs mask its value and problem reports leave the key out. Exceptions:
    /// reads by another name of the key, and policies when they are read, unless the name contains
    /// "connectionpassword".
    virtual void setKeySensitive(std::wstring key) = 0;
    virtual bool isKeySensitive(std::wstring key) = 0;
    /// Adds the settings of a provisioning URL. Returns false if the URL contains none or if provisioning is not
    /// allowed. Any thread.
    virtual bool setUrlProvisioningData(std::wstring data) = 0;
    /// Allows another provisioning URL. Returns false if the user's settings do not forbid one. Any thread.
    virtual bool resetAllowUriProvisioningData() = 0;
    /// Returns the XML text of a problem report, without the sensitive keys.
    virtual std::wstring getAllConfigForPRT() = 0;
    /// Returns the value that one store holds for the key, or an empty string if it holds none.
    virtual std::wstring getValueFromConfigStore(std::string storeName, std::wstring key) = 0;
    std::string getInterfaceName() override { return "ConfigService"; }
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

} // namespace ZelUnified
