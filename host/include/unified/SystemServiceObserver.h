#pragma once

#include <unified/UnifiedServiceObserver.h>

namespace ZelUnified {

/// Observes the host's own service.
class LUMORA_HOST_API SystemServiceObserver : public virtual UnifiedServiceObserver {
public:
    std::string getInterfaceName() override { return "SystemServiceObserver"; }
};

} // namespace ZelUnified
