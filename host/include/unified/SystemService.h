#pragma once

#include <unified/ResetDataCallbackRegistry.h>
#include <unified/ServiceEventSeverity.h>
#include <unified/UnifiedService.h>

#include <memory>

namespace ZelUnified {

class SystemServiceNotifiers;
class SystemServiceObserver;

#if defined(__clang__)
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Woverloaded-virtual" // as in UnifiedService
#endif

/// The host's own service: what other services report to it, and the reset of the client.
class LUMORA_HOST_API SystemService : public virtual UnifiedService {
public:
    virtual void addObserver(std::weak_ptr<SystemServiceObserver> observer) = 0;
    virtual void removeObserver(std::weak_ptr<SystemServiceObserver> observer) = 0;
    virtual std::shared_ptr<SystemServiceNotifiers> getSystemServiceNotifiers() = 0;
    /// Any thread.
    virtual std::shared_ptr<ResetDataCallbackRegistry> getResetDataCallbackRegistry() = 0;
    /// Reports an event of a service to the user: its code, the service's own identifier of the event, its severity.
    /// Services dispatcher's thread.
    virtual void addServiceEvent(int code, int eventId, ServiceEventSeverityEnum::ServiceEventSeverity severity) = 0;
    std::string getInterfaceName() override { return "SystemService"; }
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

} // namespace ZelUnified
