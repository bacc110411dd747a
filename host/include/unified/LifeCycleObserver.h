#pragma once

#include <unified/UnifiedBusinessObjectObserver.h>

namespace ZelUnified {

/// Observes the client's session.
class LUMORA_HOST_API LifeCycleObserver : public virtual UnifiedBusinessObjectObserver {
public:
    std::string getInterfaceName() override { return "LifeCycleObserver"; }
};

} // namespace ZelUnified
