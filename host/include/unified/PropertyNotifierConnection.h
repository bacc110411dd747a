#pragma once

#include <zel/HostExport.h>

namespace ZelUnified {

/// The handle of one callback for one property. Hold a locked shared pointer during disconnect(): the notifier's list
/// may own the only other one. Call on the services dispatcher's thread.
class LUMORA_HOST_API PropertyNotifierConnection {
public:
    virtual void disconnect() = 0;
    virtual bool connected() = 0;
    virtual ~PropertyNotifierConnection() = default;
};

} // namespace ZelUnified
