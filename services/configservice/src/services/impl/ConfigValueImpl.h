#pragma once

#include "base/ConfigValueBaseImpl.h"

#include <memory>
#include <string>

namespace ZelUnified {

class ConfigFeatureSet;

/// The live record of one key. It stores the result of the store chain, marks the properties that changed, and fires
/// them on request, so that many records can be updated before the first observer is notified.
class ConfigValueImpl final : public ConfigValueBaseImpl {
public:
    /// Constructs an undefined record.
    ConfigValueImpl(const std::shared_ptr<UnifiedFactory>& factory, std::wstring recordKey);
    /// Constructs a defined record. No property is marked as changed.
    ConfigValueImpl(const std::shared_ptr<UnifiedFactory>& factory, std::wstring recordKey, std::wstring value,
                    std::wstring originalValue, bool overridden, SharedText valueStoreName,
                    SharedText originalValueStoreName);

    /// Returns the value. In FIPS mode returns "false" for the key "Telephony_P2P_Enabled"; the stored value is
    /// unchanged.
    std::wstring getValue() override;
    void storeValueAndNotify(std::wstring value) override;
    bool isValueEqual(std::wstring value) override;
    void resetToDefault() override;
    bool differsFromOriginal() override;

    /// Assigns every property that differs and marks it as changed. Values that differ only in case are equal.
    void applyValues(std::wstring value, std::wstring originalValue, bool overridden, bool defined,
                     SharedText valueStoreName, SharedText originalValueStoreName);
    void applyValuesAndFire(std::wstring value, std::wstring originalValue, bool overridden, bool defined,
                            SharedText valueStoreName, SharedText originalValueStoreName);
    /// Fires every property marked as changed. Clears each mark after its firing: if an observer throws, that property
    /// and the following ones stay marked for the next call.
    void fireChanged();

private:
    std::shared_ptr<ConfigFeatureSet> getFeatureSet() const;
    void fireIfMarked(bool& mark, void (ConfigValueBaseImpl::*fireProperty)());

    const std::shared_ptr<UnifiedFactory> unifiedFactory;
    bool isValueChanged = false;
    bool isOriginalValueChanged = false;
    bool isOverriddenChanged = false;
    bool isDefinedChanged = false;
    bool isValueStoreNameChanged = false;
    bool isOriginalValueStoreNameChanged = false;
};

} // namespace ZelUnified
