#pragma once

#include <unified/UnifiedBusinessObjectObserver.h>

namespace ZelUnified {

/// Observes the health of a server.
class LUMORA_HOST_API ServerHealthInformationObserver : public virtual UnifiedBusinessObjectObserver {
public:
    std::string getInterfaceName() override { return "ServerHealthInformationObserver"; }
};

} // namespace ZelUnified
