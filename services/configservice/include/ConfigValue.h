#pragma once

#include <unified/UnifiedBusinessObject.h>

#include <ConfigServiceExport.h>
#include <ConfigValueNotifiers.h>
#include <ConfigValueObserver.h>

#include <memory>
#include <string>

namespace ZelUnified {

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Woverloaded-virtual" // as in UnifiedService
#endif

/// The record of one key: a view of what the store chain resolved, kept up to date in place. Hold it and observe it.
/// The order of the operations is contract. Services dispatcher's thread, but for the observer operations.
class LUMORA_CONFIG_API ConfigValue : public virtual UnifiedBusinessObject {
public:
    virtual void addObserver(std::weak_ptr<ConfigValueObserver> observer) = 0;
    virtual void removeObserver(std::weak_ptr<ConfigValueObserver> observer) = 0;
    virtual std::shared_ptr<ConfigValueNotifiers> getConfigValueNotifiers() = 0;
    /// The key as first used; the new name when the record was asked for by an old one.
    virtual std::wstring getKey() = 0;
    /// The value in force.
    virtual std::wstring getValue() = 0;
    /// The administrator's value: what stands in force without the user's own settings.
    virtual std::wstring getOriginalValue() = 0;
    /// True while the user's own value stands before the administrator's, also when the administrator has none.
    virtual bool getisOverridden() = 0;
    /// True while a store holds the key.
    virtual bool getisDefined() = 0;
    virtual std::wstring getValueStoreName() = 0;
    virtual std::wstring getOriginalValueStoreName() = 0;
    /// Writes a value through the chain. The record changes when the change has come back.
    virtual void storeValueAndNotify(std::wstring value) = 0;
    /// Ignores case.
    virtual bool isValueEqual(std::wstring value) = 0;
    /// Takes the user's own value back.
    virtual void resetToDefault() = 0;
    /// True when value or store differ from the administrator's; exact.
    virtual bool differsFromOriginal() = 0;
    std::string getInterfaceName() override { return "ConfigValue"; }
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

} // namespace ZelUnified
