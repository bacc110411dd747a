#include "ConfigServiceBaseImpl.h"

#include "ConfigServiceNotifiersImpl.h"

#include <utility>

namespace ZelUnified {

ConfigServiceBaseImpl::ConfigServiceBaseImpl(const std::shared_ptr<UnifiedFactory>& factory)
    : UnifiedServiceImpl(factory, "ConfigServiceBaseImpl") {}

void ConfigServiceBaseImpl::addObserver(std::weak_ptr<ConfigServiceObserver> observer) {
    UnifiedBusinessObjectImpl::addObserver(std::move(observer));
}

void ConfigServiceBaseImpl::removeObserver(std::weak_ptr<ConfigServiceObserver> observer) {
    UnifiedBusinessObjectImpl::removeObserver(std::move(observer));
}

std::shared_ptr<ConfigServiceNotifiers> ConfigServiceBaseImpl::getConfigServiceNotifiers() {
    initNotifiers();
    return std::dynamic_pointer_cast<ConfigServiceNotifiers>(getNotifiers());
}

void ConfigServiceBaseImpl::initNotifiers() {
    initNotifiersOnce<ConfigServiceNotifiersImpl>(
        [this](std::weak_ptr<ConfigServiceObserver> set) { addObserver(std::move(set)); });
}

bool ConfigServiceBaseImpl::getConfigReady() {
    EnsureUpdateAccess(true);
    return ConfigReady;
}

void ConfigServiceBaseImpl::setConfigReady(bool flag) {
    EnsureUpdateAccess(true);
    ConfigReady = flag;
}

void ConfigServiceBaseImpl::fireConfigReady() {
    EnsureUpdateAccess(true);
    fire(&ConfigServiceObserver::OnConfigReadyChanged);
}

} // namespace ZelUnified
