#include "ConfigValueNotifiersImpl.h"

namespace ZelUnified {

std::shared_ptr<PropertyNotifier> ConfigValueNotifiersImpl::getKeyNotifier() {
    return request(keyNotifier);
}

std::shared_ptr<PropertyNotifier> ConfigValueNotifiersImpl::getValueNotifier() {
    return request(valueNotifier);
}

std::shared_ptr<PropertyNotifier> ConfigValueNotifiersImpl::getOriginalValueNotifier() {
    return request(originalValueNotifier);
}

std::shared_ptr<PropertyNotifier> ConfigValueNotifiersImpl::getisOverriddenNotifier() {
    return request(isOverriddenNotifier);
}

std::shared_ptr<PropertyNotifier> ConfigValueNotifiersImpl::getisDefinedNotifier() {
    return request(isDefinedNotifier);
}

std::shared_ptr<PropertyNotifier> ConfigValueNotifiersImpl::getValueStoreNameNotifier() {
    return request(valueStoreNameNotifier);
}

std::shared_ptr<PropertyNotifier> ConfigValueNotifiersImpl::getOriginalValueStoreNameNotifier() {
    return request(originalValueStoreNameNotifier);
}

void ConfigValueNotifiersImpl::OnKeyChanged() {
    fireIfRequested(keyNotifier);
}

void ConfigValueNotifiersImpl::OnValueChanged() {
    fireIfRequested(valueNotifier);
}

void ConfigValueNotifiersImpl::OnOriginalValueChanged() {
    fireIfRequested(originalValueNotifier);
}

void ConfigValueNotifiersImpl::OnisOverriddenChanged() {
    fireIfRequested(isOverriddenNotifier);
}

void ConfigValueNotifiersImpl::OnisDefinedChanged() {
    fireIfRequested(isDefinedNotifier);
}

void ConfigValueNotifiersImpl::OnValueStoreNameChanged() {
    fireIfRequested(valueStoreNameNotifier);
}

void ConfigValueNotifiersImpl::OnOriginalValueStoreNameChanged() {
    fireIfRequested(originalValueStoreNameNotifier);
}

void ConfigValueNotifiersImpl::OnInfoChanged() {
    fireIfRequested(keyNotifier);
    fireIfRequested(valueNotifier);
    fireIfRequested(originalValueNotifier);
    fireIfRequested(isOverriddenNotifier);
    fireIfRequested(isDefinedNotifier);
    fireIfRequested(valueStoreNameNotifier);
    fireIfRequested(originalValueStoreNameNotifier);
}

} // namespace ZelUnified
