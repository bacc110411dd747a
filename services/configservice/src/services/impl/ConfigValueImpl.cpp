#include "ConfigValueImpl.h"

#include "secure/FipsValueOverride.h"
#include "secure/SecureString.h"

#include <kyr/StringUtils.h>
#include <unified/UnifiedFactory.h>

#include <ConfigFeatureSet.h>

#include <utility>

namespace ZelUnified {

ConfigValueImpl::ConfigValueImpl(const std::shared_ptr<UnifiedFactory>& factory, std::wstring recordKey)
    : ConfigValueBaseImpl(factory, std::move(recordKey)), unifiedFactory(factory) {}

ConfigValueImpl::ConfigValueImpl(const std::shared_ptr<UnifiedFactory>& factory, std::wstring recordKey,
                                 std::wstring value, std::wstring originalValue, bool overridden,
                                 SharedText valueStoreName, SharedText originalValueStoreName)
    : ConfigValueImpl(factory, std::move(recordKey)) {
    Value = std::move(value);
    OriginalValue = std::move(originalValue);
    isOverridden = overridden;
    isDefined = true;
    ValueStoreName = std::move(valueStoreName);
    OriginalValueStoreName = std::move(originalValueStoreName);
}

std::wstring ConfigValueImpl::getValue() {
    EnsureUpdateAccess(true);
    return std::wstring(zel::withFipsOverride(Key, Value));
}

void ConfigValueImpl::storeValueAndNotify(std::wstring value) {
    EnsureUpdateAccess(true);
    if (const auto featureSet = getFeatureSet()) {
        featureSet->setConfig(getKey(), value);
    }
}

bool ConfigValueImpl::isValueEqual(std::wstring value) {
    return KyrCoreUtils::caseInsensitiveStringEquals(getValue(), value);
}

void ConfigValueImpl::resetToDefault() {
    EnsureUpdateAccess(true);
    if (const auto featureSet = getFeatureSet()) {
        featureSet->resetConfig(getKey());
    }
}

bool ConfigValueImpl::differsFromOriginal() {
    return getValue() != getOriginalValue() || getValueStoreName() != getOriginalValueStoreName();
}

void ConfigValueImpl::applyValues(std::wstring value, std::wstring originalValue, bool overridden, bool defined,
                                  SharedText valueStoreName, SharedText originalValueStoreName) {
    EnsureUpdateAccess(true);
    if (!KyrCoreUtils::caseInsensitiveStringEquals(zel::withFipsOverride(Key, Value), value)) {
        setValue(std::move(value));
        isValueChanged = true;
    } else {
        zel::SecureString::wipe(value);
    }
    if (!KyrCoreUtils::caseInsensitiveStringEquals(OriginalValue, originalValue)) {
        setOriginalValue(std::move(originalValue));
        isOriginalValueChanged = true;
    } else {
        zel::SecureString::wipe(originalValue);
    }
    if (isOverridden != overridden) {
        setisOverridden(overridden);
        isOverriddenChanged = true;
    }
    if (isDefined != defined) {
        setisDefined(defined);
        isDefinedChanged = true;
    }
    if (ValueStoreName != valueStoreName) {
        setValueStoreName(std::move(valueStoreName));
        isValueStoreNameChanged = true;
    }
    if (OriginalValueStoreName != originalValueStoreName) {
        setOriginalValueStoreName(std::move(originalValueStoreName));
        isOriginalValueStoreNameChanged = true;
    }
}

void ConfigValueImpl::applyValuesAndFire(std::wstring value, std::wstring originalValue, bool overridden, bool defined,
                                         SharedText valueStoreName, SharedText originalValueStoreName) {
    applyValues(std::move(value), std::move(originalValue), overridden, defined, std::move(valueStoreName),
                std::move(originalValueStoreName));
    fireChanged();
}

void ConfigValueImpl::fireChanged() {
    fireIfMarked(isValueChanged, &ConfigValueBaseImpl::fireValue);
    fireIfMarked(isOriginalValueChanged, &ConfigValueBaseImpl::fireOriginalValue);
    fireIfMarked(isOverriddenChanged, &ConfigValueBaseImpl::fireisOverridden);
    fireIfMarked(isDefinedChanged, &ConfigValueBaseImpl::fireisDefined);
    fireIfMarked(isValueStoreNameChanged, &ConfigValueBaseImpl::fireValueStoreName);
    fireIfMarked(isOriginalValueStoreNameChanged, &ConfigValueBaseImpl::fireOriginalValueStoreName);
}

void ConfigValueImpl::fireIfMarked(bool& mark, void (ConfigValueBaseImpl::*fireProperty)()) {
    if (mark) {
        (this->*fireProperty)();
        mark = false;
    }
}

std::shared_ptr<ConfigFeatureSet> ConfigValueImpl::getFeatureSet() const {
    return unifiedFactory ? unifiedFactory->getFeatureSetByType<ConfigFeatureSet>() : nullptr;
}

} // namespace ZelUnified
