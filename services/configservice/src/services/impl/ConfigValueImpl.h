#pragma once

#include "base/ConfigValueBaseImpl.h"

#include <memory>
#include <string>

namespace ZelUnified {

class ConfigFeatureSet;

/// The live record of one key. It takes what the store chain resolved, remembers which properties changed, and fires
/// them when told; so many records can be brought up to date before any observer hears of the first.
class ConfigValueImpl final : public ConfigValueBaseImpl {
public:
    /// An undefined record.
    ConfigValueImpl(const std::shared_ptr<UnifiedFactory>& factory, std::wstring recordKey);
    /// A defined record with its values. No property counts as changed.
    ConfigValueImpl(const std::shared_ptr<UnifiedFactory>& factory, std::wstring recordKey, std::wstring value,
                    std::wstring originalValue, bool overridden, SharedText valueStoreName,
                    SharedText originalValueStoreName);

    /// In FIPS mode the key "Telephony_P2P_Enabled" reads "false"; the stored value stays.
    std::wstring getValue() override;
    void storeValueAndNotify(std::wstring value) override;
    bool isValueEqual(std::wstring value) override;
    void resetToDefault() override;
    bool differsFromOriginal() override;

    /// Takes over every property that differs and marks it as changed. Values that differ in case only count as equal.
    void applyValues(std::wstring value, std::wstring originalValue, bool overridden, bool defined,
                     SharedText valueStoreName, SharedText originalValueStoreName);
    void applyValuesAndFire(std::wstring value, std::wstring originalValue, bool overridden, bool defined,
                            SharedText valueStoreName, SharedText originalValueStoreName);
    /// Fires every property marked as changed. A mark is cleared after its firing: when an observer throws, the
    /// property and those behind it stay marked for the next attempt.
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
