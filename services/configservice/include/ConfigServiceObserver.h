#pragma once

#include <unified/UnifiedServiceObserver.h>

#include <ConfigServiceExport.h>

namespace ZelUnified {

/// Observes the configuration service. The service holds a weak reference and calls it on the services dispatcher's
/// thread. The order of the operations is part of the contract.
///
/// A callback may read, write, connect and disconnect. It must not wait for another thread, and must not start, stop,
/// refresh or reset the feature set, nor call IsFeatureSetStarted().
class LUMORA_CONFIG_API ConfigServiceObserver : public virtual UnifiedBusinessObjectObserver,
                                                public virtual UnifiedServiceObserver {
public:
    virtual void OnConfigReadyChanged() = 0;
    std::string getInterfaceName() override { return "ConfigServiceObserver"; }
};

} // namespace ZelUnified
