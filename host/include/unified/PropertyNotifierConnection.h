#pragma once

#include <zel/HostExport.h>

namespace ZelUnified {

/// Handle of one callback on one property. Hold a locked shared pointer across disconnect(): the notifier's list may
/// own the only other one. Services dispatcher's thread.
class LUMORA_HOST_API PropertyNotifierConnection {
public:
    virtual void disconnect() = 0;
    virtual bool connected() = 0;
    virtual ~PropertyNotifierConnection() = default;
};

} // namespace ZelUnified
