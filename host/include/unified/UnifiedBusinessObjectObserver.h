#pragma once

#include <zel/HostExport.h>

#include <string>

namespace ZelUnified {

/// Observes an object. The object holds it weakly and calls it on the services dispatcher's thread. A callback may
/// read, write, connect and disconnect; it must not wait for another thread, start, stop, refresh or reset a feature
/// set, or call IsFeatureSetStarted().
class LUMORA_HOST_API UnifiedBusinessObjectObserver {
public:
    virtual ~UnifiedBusinessObjectObserver() = default;

    /// Called when any property of the object may have changed.
    virtual void OnInfoChanged() {}
    virtual void OnGuidChanged() {}
    virtual std::string getInterfaceName() { return "UnifiedBusinessObjectObserver"; }
};

} // namespace ZelUnified
