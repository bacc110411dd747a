#pragma once

#include <zel/HostExport.h>

namespace ZelUnified {

/// A service that wants to know when the feature set of its own number stands started. The host calls it on the
/// services dispatcher's thread: true after a successful start.
class LUMORA_HOST_API FeatureSetReadyListener {
public:
    virtual void onFeatureSetReady(bool ready) = 0;

protected:
    ~FeatureSetReadyListener() = default;
};

} // namespace ZelUnified
