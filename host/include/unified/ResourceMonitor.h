#pragma once

#include <zel/HostExport.h>

namespace ZelUnified {

/// Watches the resources of the process. Named by the factory's interface; this host provides none.
class LUMORA_HOST_API ResourceMonitor {
public:
    virtual ~ResourceMonitor() = default;
};

} // namespace ZelUnified
