#pragma once

#include <zel/HostExport.h>

namespace ZelUnified {

/// Provides the client's credentials. Named by other plug-ins' headers; its operations are its providers' matter, and
/// nothing here calls one.
class LUMORA_HOST_API Authenticator {
public:
    virtual ~Authenticator() = default;
};

} // namespace ZelUnified
