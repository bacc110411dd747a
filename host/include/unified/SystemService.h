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

/// The host's own service: receives the events that other services report and holds the reset callbacks.
class LUMORA_HOST_API SystemService : public virtual UnifiedService {
public:
    virtual void addObserver(std::weak_ptr<SystemServiceObserver> observer) = 0;
    virtual void removeObserver(std::weak_ptr<SystemServiceObserver> observer) = 0;
    virtual std::shared_ptr<SystemServiceNotifiers> getSystemServiceNotifiers() = 0;
    /// Returns the registry of reset callbacks. Any thread.
    virtual std::shared_ptr<ResetDataCallbackRegistry> getResetDataCallbackRegistry() = 0;
    /// Reports a service event to the user. `code` is the event's code, `eventId` the service's own identifier of the
    /// event. Call on the services dispatcher's thread.
    virtual void addServiceEvent(int code, int eventId, ServiceEventSeverityEnum::ServiceEventSeverity severity) = 0;
    std::string getInterfaceName() override { return "SystemService"; }
};

#if defined(__clang__)
#pragma clang diagnostic pop
#endif

} // namespace ZelUnified
