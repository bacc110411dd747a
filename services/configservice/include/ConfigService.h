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

/// The configuration service, filed with the factory under 1300: reads come from records kept in memory, writes go to
/// the store chain. The order of the operations is contract. Services dispatcher's thread, unless said otherwise; on
/// another one a call throws UpdateAccessError and changes nothing. Without a feature set, operations that need one do
/// nothing and give false or an empty text.
class LUMORA_CONFIG_API ConfigService : public virtual UnifiedService {
public:
    virtual void addObserver(std::weak_ptr<ConfigServiceObserver> observer) = 0;
    virtual void removeObserver(std::weak_ptr<ConfigServiceObserver> observer) = 0;
    virtual std::shared_ptr<ConfigServiceNotifiers> getConfigServiceNotifiers() = 0;
    /// True once the host has told that the feature set stands started.
    virtual bool getConfigReady() = 0;
    /// The record of the key, never empty. A key that no store ever spoke of has an undefined record.
    virtual std::shared_ptr<ConfigValue> getConfig(std::wstring key) = 0;
    /// Writes a value through the chain, where it need not win. The record changes when the change has come back.
    virtual void setConfig(std::wstring key, std::wstring value) = 0;
    /// Sets a value for the length of this run.
    virtual void setInMemoryConfig(std::wstring key, std::wstring value) = 0;
    /// Replaces what device management pushed, an XML document in UTF-8.
    virtual void setMdmConfig(std::string data) = 0;
    /// Every record, undefined ones too, in key order. Another thread is not refused, yet must not call.
    virtual std::shared_ptr<std::list<std::shared_ptr<ConfigValue>>> getAllConfig() = 0;
    /// Takes the user's own value back, under the key's old and new names.
    virtual void resetConfig(std::wstring key) = 0;
    /// False when there was neither the store nor a cached copy of it.
    virtual bool removeConfigStoreAndCache(std::wstring storeName) = 0;
    /// Deletes the cached copies on disk.
    virtual void removeAllCachedConfigStores() = 0;
    /// Writes every record to the log, as one entry.
    virtual void logConfig() = 0;
    /// The key's value never shows in a log or a report from here on.
    virtual void setKeySensitive(std::wstring key) = 0;
    virtual bool isKeySensitive(std::wstring key) = 0;
    /// Takes the settings of a provisioning URL. False when it holds none, or when provisioning is not allowed. Any
    /// thread.
    virtual bool setUrlProvisioningData(std::wstring data) = 0;
    /// Allows another provisioning URL. False when the user's settings do not forbid it. Any thread.
    virtual bool resetAllowUriProvisioningData() = 0;
    /// The XML text of a problem report, sensitive keys left out.
    virtual std::wstring getAllConfigForPRT() = 0;
    /// What one store says of the key; empty when it says nothing.
    virtual std::wstring getValueFromConfigStore(std::string storeName, std::wstring key) = 0;
    std::string getInterfaceName() override { return "ConfigService"; }
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

} // namespace ZelUnified
