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
    virtual bool getConfigReady() = 0;
    /// The record of the key, never empty. A key that no store ever spoke of has an undefined record.
    virtual std::shared_ptr<ConfigValue> getConfig(std::wstring key) = 0;
    virtual void setConfig(std::wstring key, std::wstring value) = 0;
    virtual void setInMemoryConfig(std::wstring key, std::wstring value) = 0;
    virtual void setMdmConfig(std::string data) = 0;
    /// Every record, undefined ones too, in key order.
    virtual std::shared_ptr<std::list<std::shared_ptr<ConfigValue>>> getAllConfig() = 0;
    virtual void resetConfig(std::wstring key) = 0;
    virtual bool removeConfigStoreAndCache(std::wstring storeName) = 0;
    virtual void removeAllCachedConfigStores() = 0;
    /// Writes every record to the log, as one entry.
    virtual void logConfig() = 0;
    virtual void setKeySensitive(std::wstring key) = 0;
    virtual bool isKeySensitive(std::wstring key) = 0;
    /// Any thread.
    virtual bool setUrlProvisioningData(std::wstring data) = 0;
    /// Any thread.
    virtual bool resetAllowUriProvisioningData() = 0;
    virtual std::wstring getAllConfigForPRT() = 0;
    virtual std::wstring getValueFromConfigStore(std::string storeName, std::wstring key) = 0;
    std::string getInterfaceName() override { return "ConfigService"; }
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

} // namespace ZelUnified
