#pragma once

#include <unified/ServiceEventSeverity.h>
#include <zel/HostExport.h>

namespace ZelUnified {

/// What a service reported to the user, by numbers; the texts are in the service's event descriptions.
struct ReportedServiceEvent {
    int code = 0;
    int eventId = 0;
    ServiceEventSeverityEnum::ServiceEventSeverity severity = ServiceEventSeverityEnum::Info;
};

/// How an embedding program learns of service events. Held weakly; called on the services dispatcher's thread with no
/// lock held.
class LUMORA_HOST_API ServiceEventListener {
public:
    virtual void onServiceEvent(const ReportedServiceEvent& event) = 0;

protected:
    ~ServiceEventListener() = default;
};

} // namespace ZelUnified
