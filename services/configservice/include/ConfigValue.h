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

/// The record of one key: the result of its lookup in the store chain, updated in place. Keep the record and observe
/// it. The order of the operations is part of the contract. Services dispatcher's thread, except for the observer
/// operations.
class LUMORA_CONFIG_API ConfigValue : public virtual UnifiedBusinessObject {
public:
    virtual void addObserver(std::weak_ptr<ConfigValueObserver> observer) = 0;
    virtual void removeObserver(std::weak_ptr<ConfigValueObserver> observer) = 0;
    virtual std::shared_ptr<ConfigValueNotifiers> getConfigValueNotifiers() = 0;
    /// Returns the key as spelled when it was first used. A record requested by an old name returns the new name.
    virtual std::wstring getKey() = 0;
    /// Returns the effective value.
    virtual std::wstring getValue() = 0;
    /// Returns the administrator's value: that of the first read-only store whose value is not empty; "" if there is
    /// none.
    virtual std::wstring getOriginalValue() = 0;
    /// Returns true if a writable store, such as the user's file or the values for this run, holds the key and no
    /// read-only store before it has a value that is not empty. The administrator need not have set a value.
    virtual bool getisOverridden() = 0;
    /// Returns true if a store holds the key.
    virtual bool getisDefined() = 0;
    virtual std::wstring getValueStoreName() = 0;
    virtual std::wstring getOriginalValueStoreName() = 0;
    /// Writes a value to the store chain. The record changes when the chain reports the change.
    virtual void storeValueAndNotify(std::wstring value) = 0;
    /// Compares case-insensitively.
    virtual bool isValueEqual(std::wstring value) = 0;
    /// Removes the key's values from the writable stores, under its old and new names.
    virtual void resetToDefault() = 0;
    /// Returns true if the value or its store differs from the administrator's. Compares case-sensitively.
    virtual bool differsFromOriginal() = 0;
    std::string getInterfaceName() override { return "ConfigValue"; }
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

} // namespace ZelUnified
