#pragma once

#include <zel/HostExport.h>

#include <list>
#include <memory>
#include <vector>

namespace ZelUnified {

class ServiceEvent;

using ServiceEventList = std::list<std::shared_ptr<ServiceEvent>>;

/// The interface through which the host controls a feature set. The order of the operations is part of the contract.
/// The host calls them on the services dispatcher's thread. Shared pointers made from the concrete type own the object.
/// With an id of another feature set, an operation changes nothing and returns false.
class LUMORA_HOST_API FeatureSetAdapter {
public:
    /// Starts the feature set. Appends events for the user to `events`, which may be null.
    virtual void StartFeatureSet(unsigned int id, std::shared_ptr<ServiceEventList> events) = 0;
    virtual void StopFeatureSet(unsigned int id, std::shared_ptr<ServiceEventList> events) = 0;
    /// Releases everything that the feature set holds. The host makes no call after this one.
    virtual void Destroy() = 0;
    virtual bool IsFeatureSetStarted(unsigned int id) = 0;
    virtual bool IsFeatureSetProvisioned(unsigned int id) = 0;
    /// Returns the ids of the feature sets that this one depends on.
    virtual std::vector<unsigned int> GetFeatureSetDependencies(unsigned int id) = 0;

protected:
    ~FeatureSetAdapter() = default;
};

} // namespace ZelUnified
