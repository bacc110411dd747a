#pragma once

#include <unified/UnifiedBusinessObjectObserver.h>

namespace ZelUnified {

/// Observes a service event.
class LUMORA_HOST_API ServiceEventObserver : public virtual UnifiedBusinessObjectObserver {
public:
    std::string getInterfaceName() override { return "ServiceEventObserver"; }
};

} // namespace ZelUnified
