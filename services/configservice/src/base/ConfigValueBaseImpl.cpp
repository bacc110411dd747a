#include "ConfigValueBaseImpl.h"

#include "ConfigValueNotifiersImpl.h"
#include "secure/SecureString.h"

#include <utility>

namespace ZelUnified {

ConfigValueBaseImpl::ConfigValueBaseImpl(const std::shared_ptr<UnifiedFactory>& factory, std::wstring recordKey)
    : UnifiedBusinessObjectImpl(factory, "ConfigValueBaseImpl"), Key(std::move(recordKey)) {}

ConfigValueBaseImpl::~ConfigValueBaseImpl() {
    zel::SecureString::wipe(Value);
    zel::SecureString::wipe(OriginalValue);
}

void ConfigValueBaseImpl::addObserver(std::weak_ptr<ConfigValueObserver> observer) {
    UnifiedBusinessObjectImpl::addObserver(std::move(observer));
}

void ConfigValueBaseImpl::removeObserver(std::weak_ptr<ConfigValueObserver> observer) {
    UnifiedBusinessObjectImpl::removeObserver(std::move(observer));
}

std::shared_ptr<ConfigValueNotifiers> ConfigValueBaseImpl::getConfigValueNotifiers() {
    initNotifiers();
    return std::dynamic_pointer_cast<ConfigValueNotifiers>(getNotifiers());
}

void ConfigValueBaseImpl::initNotifiers() {
    initNotifiersOnce<ConfigValueNotifiersImpl>(
        [this](std::weak_ptr<ConfigValueObserver> set) { addObserver(std::move(set)); });
}

std::wstring ConfigValueBaseImpl::getKey() {
    EnsureUpdateAccess(true);
    return Key;
}

void ConfigValueBaseImpl::setKey(std::wstring text) {
    EnsureUpdateAccess(true);
    Key = std::move(text);
}

void ConfigValueBaseImpl::fireKey() {
    EnsureUpdateAccess(true);
    fire(&ConfigValueObserver::OnKeyChanged);
}

std::wstring ConfigValueBaseImpl::getValue() {
    EnsureUpdateAccess(true);
    return Value;
}

void ConfigValueBaseImpl::setValue(std::wstring text) {
    EnsureUpdateAccess(true);
    Value.swap(text);
    zel::SecureString::wipe(text);
}

void ConfigValueBaseImpl::fireValue() {
    EnsureUpdateAccess(true);
    fire(&ConfigValueObserver::OnValueChanged);
}

std::wstring ConfigValueBaseImpl::getOriginalValue() {
    EnsureUpdateAccess(true);
    return OriginalValue;
}

void ConfigValueBaseImpl::setOriginalValue(std::wstring text) {
    EnsureUpdateAccess(true);
    OriginalValue.swap(text);
    zel::SecureString::wipe(text);
}

void ConfigValueBaseImpl::fireOriginalValue() {
    EnsureUpdateAccess(true);
    fire(&ConfigValueObserver::OnOriginalValueChanged);
}

bool ConfigValueBaseImpl::getisOverridden() {
    EnsureUpdateAccess(true);
    return isOverridden;
}

void ConfigValueBaseImpl::setisOverridden(bool flag) {
    EnsureUpdateAccess(true);
    isOverridden = flag;
}

void ConfigValueBaseImpl::fireisOverridden() {
    EnsureUpdateAccess(true);
    fire(&ConfigValueObserver::OnisOverriddenChanged);
}

bool ConfigValueBaseImpl::getisDefined() {
    EnsureUpdateAccess(true);
    return isDefined;
}

void ConfigValueBaseImpl::setisDefined(bool flag) {
    EnsureUpdateAccess(true);
    isDefined = flag;
}

void ConfigValueBaseImpl::fireisDefined() {
    EnsureUpdateAccess(true);
    fire(&ConfigValueObserver::OnisDefinedChanged);
}

std::wstring ConfigValueBaseImpl::getValueStoreName() {
    EnsureUpdateAccess(true);
    return ValueStoreName.get();
}

void ConfigValueBaseImpl::setValueStoreName(SharedText text) {
    EnsureUpdateAccess(true);
    ValueStoreName = std::move(text);
}

void ConfigValueBaseImpl::fireValueStoreName() {
    EnsureUpdateAccess(true);
    fire(&ConfigValueObserver::OnValueStoreNameChanged);
}

std::wstring ConfigValueBaseImpl::getOriginalValueStoreName() {
    EnsureUpdateAccess(true);
    return OriginalValueStoreName.get();
}

void ConfigValueBaseImpl::setOriginalValueStoreName(SharedText text) {
    EnsureUpdateAccess(true);
    OriginalValueStoreName = std::move(text);
}

void ConfigValueBaseImpl::fireOriginalValueStoreName() {
    EnsureUpdateAccess(true);
    fire(&ConfigValueObserver::OnOriginalValueStoreNameChanged);
}

} // namespace ZelUnified
