#pragma once

#include <unified/UnifiedBusinessObjectObserver.h>

namespace ZelUnified {

/// Observes a service.
class LUMORA_HOST_API UnifiedServiceObserver : public virtual UnifiedBusinessObjectObserver {
public:
    virtual void OnBulkUpdateInProgressChanged() = 0;
    std::string getInterfaceName() override { return "UnifiedServiceObserver"; }
};

} // namespace ZelUnified
