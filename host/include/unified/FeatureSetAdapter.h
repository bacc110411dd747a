#pragma once

#include <zel/HostExport.h>

#include <list>
#include <memory>
#include <vector>

namespace ZelUnified {

class ServiceEvent;

using ServiceEventList = std::list<std::shared_ptr<ServiceEvent>>;

/// The interface through which the host drives a feature set. The order of the operations is contract.
/// The host calls them on the services dispatcher's thread. Owned by shared pointers made from the concrete type.
/// An id that is not its own changes nothing and answers false.
class LUMORA_HOST_API FeatureSetAdapter {
public:
    /// `events` takes what the user is to be told of it; it may be null.
    virtual void StartFeatureSet(unsigned int id, std::shared_ptr<ServiceEventList> events) = 0;
    virtual void StopFeatureSet(unsigned int id, std::shared_ptr<ServiceEventList> events) = 0;
    /// Releases what the feature set holds. The last call.
    virtual void Destroy() = 0;
    virtual bool IsFeatureSetStarted(unsigned int id) = 0;
    virtual bool IsFeatureSetProvisioned(unsigned int id) = 0;
    /// The feature sets that this one needs.
    virtual std::vector<unsigned int> GetFeatureSetDependencies(unsigned int id) = 0;

protected:
    ~FeatureSetAdapter() = default;
};

} // namespace ZelUnified
