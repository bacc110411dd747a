#include "UnifiedServiceImpl.h"

#include "UnifiedServiceNotifiersImpl.h"

#include <utility>

namespace ZelUnified {

UnifiedServiceImpl::UnifiedServiceImpl(const std::shared_ptr<UnifiedFactory>& factory, const char* name)
    : UnifiedBusinessObjectImpl(factory, name) {}

UnifiedServiceImpl::UnifiedServiceImpl(const std::shared_ptr<UnifiedFactory>& factory, bool enforceUpdateAccess,
                                       const char* name)
    : UnifiedBusinessObjectImpl(factory, enforceUpdateAccess, name) {}

void UnifiedServiceImpl::addObserver(std::weak_ptr<UnifiedServiceObserver> observer) {
    UnifiedBusinessObjectImpl::addObserver(std::move(observer));
}

void UnifiedServiceImpl::removeObserver(std::weak_ptr<UnifiedServiceObserver> observer) {
    UnifiedBusinessObjectImpl::removeObserver(std::move(observer));
}

std::shared_ptr<UnifiedServiceNotifiers> UnifiedServiceImpl::getUnifiedServiceNotifiers() {
    initNotifiers();
    return std::dynamic_pointer_cast<UnifiedServiceNotifiers>(getNotifiers());
}

void UnifiedServiceImpl::initNotifiers() {
    initNotifiersOnce<UnifiedServiceNotifiersImpl>(
        [this](std::weak_ptr<UnifiedServiceObserver> set) { addObserver(std::move(set)); });
}

void UnifiedServiceImpl::commitToServicesDispatcher() {
    UnifiedBusinessObjectImpl::commitToServicesDispatcher();
}

std::string UnifiedServiceImpl::getClassName() {
    return "UnifiedServiceImpl";
}

bool UnifiedServiceImpl::getBulkUpdateInProgress() {
    return BulkUpdateInProgress;
}

void UnifiedServiceImpl::setBulkUpdateInProgress(bool flag) {
    EnsureUpdateAccess(true);
    BulkUpdateInProgress = flag;
}

void UnifiedServiceImpl::fireOnBulkUpdateInProgressChanged() {
    EnsureUpdateAccess(true);
    fire(&UnifiedServiceObserver::OnBulkUpdateInProgressChanged);
}

} // namespace ZelUnified
