#pragma once

#include <zel/HostExport.h>

namespace ZelUnified {

/// Watches the resources of the process. The factory's interface refers to it; this host provides none.
class LUMORA_HOST_API ResourceMonitor {
public:
    virtual ~ResourceMonitor() = default;
};

} // namespace ZelUnified
