#pragma once

#include <zel/HostExport.h>

namespace ZelUnified {

/// Tells a program that pumps the services dispatcher that a task waits. Called on the posting thread; it must only
/// wake the pumping one.
class LUMORA_HOST_API ServicesDispatcherCallback {
public:
    virtual ~ServicesDispatcherCallback() = default;
    virtual void onDispatcherTaskPosted() = 0;
};

} // namespace ZelUnified
