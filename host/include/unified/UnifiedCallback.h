#pragma once

#include <zel/HostExport.h>

#include <string>

namespace ZelUnified {

/// Base class of the callbacks that the host calls.
class LUMORA_HOST_API UnifiedCallback {
public:
    virtual ~UnifiedCallback() = default;
    virtual std::string getInterfaceName() { return "UnifiedCallback"; }
};

} // namespace ZelUnified
