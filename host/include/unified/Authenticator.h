#pragma once

#include <zel/HostExport.h>

namespace ZelUnified {

/// Provides the client's credentials. The headers of other plug-ins refer to this interface; the host calls none
/// of its operations.
class LUMORA_HOST_API Authenticator {
public:
    virtual ~Authenticator() = default;
};

} // namespace ZelUnified
