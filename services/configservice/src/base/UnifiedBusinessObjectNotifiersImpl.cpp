#include "UnifiedBusinessObjectNotifiersImpl.h"

namespace ZelUnified {

std::shared_ptr<PropertyNotifier> UnifiedBusinessObjectNotifiersImpl::getGuidNotifier() {
    return request(guidNotifier);
}

void UnifiedBusinessObjectNotifiersImpl::OnGuidChanged() {
    fireIfRequested(guidNotifier);
}

void UnifiedBusinessObjectNotifiersImpl::OnInfoChanged() {
    fireIfRequested(guidNotifier);
}

std::shared_ptr<PropertyNotifier>
UnifiedBusinessObjectNotifiersImpl::request(std::shared_ptr<PropertyNotifierImpl>& field) {
    if (!field) {
        field = std::make_shared<PropertyNotifierImpl>();
    }
    return field;
}

void UnifiedBusinessObjectNotifiersImpl::fireIfRequested(std::shared_ptr<PropertyNotifierImpl> notifier) {
    if (notifier) {
        notifier->fire();
    }
}

} // namespace ZelUnified
