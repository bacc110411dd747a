#pragma once

#include <zel/HostExport.h>

namespace ZelUnified {

/// Notifies a program that pumps the services dispatcher of a posted task. Called on the posting thread; it must do no
/// more than wake the pumping thread.
class LUMORA_HOST_API ServicesDispatcherCallback {
public:
    virtual ~ServicesDispatcherCallback() = default;
    virtual void onDispatcherTaskPosted() = 0;
};

} // namespace ZelUnified
