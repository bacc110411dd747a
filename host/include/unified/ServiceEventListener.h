#pragma once

#include <unified/ServiceEventSeverity.h>
#include <zel/HostExport.h>

namespace ZelUnified {

/// A service event reported to the user. Holds numbers only; the texts are in the service's event descriptions.
struct ReportedServiceEvent {
    int code = 0;
    int eventId = 0;
    ServiceEventSeverityEnum::ServiceEventSeverity severity = ServiceEventSeverityEnum::Info;
};

/// Receives service events in an embedding program. The host holds it weakly and calls it on the services dispatcher's
/// thread, with no lock held.
class LUMORA_HOST_API ServiceEventListener {
public:
    virtual void onServiceEvent(const ReportedServiceEvent& event) = 0;

protected:
    ~ServiceEventListener() = default;
};

} // namespace ZelUnified
