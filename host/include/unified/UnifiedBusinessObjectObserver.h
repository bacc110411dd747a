#pragma once

#include <zel/HostExport.h>

#include <string>

namespace ZelUnified {

/// Follows an object. Held weakly by what it follows; called on the services dispatcher's thread. A callback may read,
/// write, connect and disconnect; it must not wait for another thread, nor start, stop, refresh or reset a
/// feature set.
class LUMORA_HOST_API UnifiedBusinessObjectObserver {
public:
    virtual ~UnifiedBusinessObjectObserver() = default;

    /// All properties of the object may have changed.
    virtual void OnInfoChanged() {}
    virtual void OnGuidChanged() {}
    virtual std::string getInterfaceName() { return "UnifiedBusinessObjectObserver"; }
};

} // namespace ZelUnified
