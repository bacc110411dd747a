#pragma once

#include <unified/FeatureSet.h>

#include <InspectionServiceExport.h>

#include <string>

namespace ZelUnified {

/// Answers requests of processes of the same user on a local socket: reads, watches and changes the configuration of
/// the running client. docs/inspection.md specifies the protocol.
///
/// A host loads it by this type like every service, and starts it with UnifiedFactory::StartFeatureSet() after the
/// configuration service. The host must hold the lock of the profile. Any thread.
class INSPECTION_SERVICE_API InspectionService : public FeatureSet {
public:
    /// Lower than the number of the configuration service, so that the host stops and destroys this service first.
    static constexpr unsigned int inspectionServiceId = 1299;

    /// Allows or refuses requests that change something; allowed by default. The administrator's policy, the key
    /// ConfigKeys::inspectionAllowsChanges, can only refuse.
    virtual void setChangesAllowed(bool allowed) = 0;
    /// Returns the path of the socket, or "" while the service does not listen.
    virtual std::string getSocketPath() = 0;
};

} // namespace ZelUnified
