#pragma once

#include <zel/HostExport.h>

namespace ZelUnified {

/// Implemented by a service that needs to know when the feature set with the service's own id has started. The host
/// calls it on the services dispatcher's thread, with true, after a successful start.
class LUMORA_HOST_API FeatureSetReadyListener {
public:
    virtual void onFeatureSetReady(bool ready) = 0;

protected:
    ~FeatureSetReadyListener() = default;
};

} // namespace ZelUnified
