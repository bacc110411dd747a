#pragma once

#include <unified/UnifiedServiceObserver.h>

#include <ConfigServiceExport.h>

namespace ZelUnified {

/// Follows the configuration service.
class LUMORA_CONFIG_API ConfigServiceObserver : public virtual UnifiedBusinessObjectObserver,
                                                public virtual UnifiedServiceObserver {
public:
    virtual void OnConfigReadyChanged() = 0;
    std::string getInterfaceName() override { return "ConfigServiceObserver"; }
};

} // namespace ZelUnified
