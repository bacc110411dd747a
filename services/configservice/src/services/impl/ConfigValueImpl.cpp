#include "ConfigValueImpl.h"

#include "secure/FipsValueOverride.h"

#include <kyr/StringUtils.h>
#include <unified/UnifiedFactory.h>

#include <ConfigFeatureSet.h>

#include <utility>

namespace ZelUnified {

ConfigValueImpl::ConfigValueImpl(const std::shared_ptr<UnifiedFactory>& factory, std::wstring recordKey)
    : ConfigValueBaseImpl(factory, std::move(recordKey)), unifiedFactory(factory) {}

ConfigValueImpl::ConfigValueImpl(const std::shared_ptr<UnifiedFactory>& factory, std::wstring recordKey,
                                 std::wstring value, std::wstring originalValue, bool overridden,
                                 std::wstring valueStoreName, std::wstring originalValueStoreName)
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

void ConfigValueImpl::applyValues(const std::wstring& value, const std::wstring& originalValue, bool overridden,
                                  bool defined, const std::wstring& valueStoreName,
                                  const std::wstring& originalValueStoreName) {
    EnsureUpdateAccess(true);
    if (!KyrCoreUtils::caseInsensitiveStringEquals(zel::withFipsOverride(Key, Value), value)) {
        setValue(value);
        isValueChanged = true;
    }
    if (!KyrCoreUtils::caseInsensitiveStringEquals(OriginalValue, originalValue)) {
        setOriginalValue(originalValue);
        isOriginalValueChanged = true;
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
        setValueStoreName(valueStoreName);
        isValueStoreNameChanged = true;
    }
    if (OriginalValueStoreName != originalValueStoreName) {
        setOriginalValueStoreName(originalValueStoreName);
        isOriginalValueStoreNameChanged = true;
    }
}

void ConfigValueImpl::applyValuesAndFire(const std::wstring& value, const std::wstring& originalValue, bool overridden,
                                         bool defined, const std::wstring& valueStoreName,
                                         const std::wstring& originalValueStoreName) {
    applyValues(value, originalValue, overridden, defined, valueStoreName, originalValueStoreName);
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
