#include "ConfigServiceNotifiersImpl.h"

namespace ZelUnified {

std::shared_ptr<PropertyNotifier> ConfigServiceNotifiersImpl::getConfigReadyNotifier() {
    return request(configReadyNotifier);
}

void ConfigServiceNotifiersImpl::OnConfigReadyChanged() {
    fireIfRequested(configReadyNotifier);
}

void ConfigServiceNotifiersImpl::OnInfoChanged() {
    fireIfRequested(configReadyNotifier);
}

} // namespace ZelUnified
