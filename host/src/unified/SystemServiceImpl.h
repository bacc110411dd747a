#pragma once

#include "ResetDataCallbackRegistryImpl.h"

#include <unified/ServiceEventListener.h>
#include <unified/SystemService.h>
#include <unified/UnifiedBusinessObjectImpl.h>

#include <memory>

namespace ZelUnified {

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Woverloaded-virtual" // as in UnifiedService
#endif

/// Forwards service events to the embedding program and holds the reset callbacks. Its properties never change, so it
/// has no notifiers: the three notifier getters return null.
class LUMORA_HOST_API SystemServiceImpl final : public UnifiedBusinessObjectImpl, public virtual SystemService {
public:
    SystemServiceImpl(const std::shared_ptr<UnifiedFactory>& factory,
                      std::shared_ptr<ResetDataCallbackRegistryImpl> callbacks,
                      std::weak_ptr<ServiceEventListener> eventListener);

    using UnifiedBusinessObjectImpl::addObserver;
    using UnifiedBusinessObjectImpl::removeObserver;
    void addObserver(std::weak_ptr<UnifiedServiceObserver> observer) override;
    void removeObserver(std::weak_ptr<UnifiedServiceObserver> observer) override;
    void addObserver(std::weak_ptr<SystemServiceObserver> observer) override;
    void removeObserver(std::weak_ptr<SystemServiceObserver> observer) override;
    std::shared_ptr<UnifiedServiceNotifiers> getUnifiedServiceNotifiers() override { return nullptr; }
    std::shared_ptr<SystemServiceNotifiers> getSystemServiceNotifiers() override { return nullptr; }
    bool getBulkUpdateInProgress() override { return false; }

    std::shared_ptr<ResetDataCallbackRegistry> getResetDataCallbackRegistry() override { return resetCallbacks; }
    void addServiceEvent(int code, int eventId, ServiceEventSeverityEnum::ServiceEventSeverity severity) override;

private:
    void initNotifiers() override {}

    const std::shared_ptr<ResetDataCallbackRegistryImpl> resetCallbacks;
    const std::weak_ptr<ServiceEventListener> listener;
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

} // namespace ZelUnified
