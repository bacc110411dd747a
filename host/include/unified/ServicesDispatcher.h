#pragma once

#include <zel/HostExport.h>
#include <zel/Task.h>

#include <memory>

namespace ZelUnified::Processing {

/// The one thread that owns all public objects. First in, first out.
class LUMORA_HOST_API ServicesDispatcher {
public:
    virtual ~ServicesDispatcher() = default;

    /// True when the caller stands on the dispatcher's thread. Any thread; one atomic read.
    virtual bool checkForUpdateAccess() const = 0;

    /// Posts the task and returns; `ahead` puts it before what already waits. A null task is ignored. After the
    /// dispatcher's end the task is dropped with a warning.
    virtual void enqueue(std::shared_ptr<zel::Task> task, bool ahead) = 0;

    /// Posts the task and returns when it has run. On the dispatcher's own thread, and on a dispatcher that does not
    /// run, the task runs at once on the caller's. A task that throws is logged, and the caller released all the same.
    virtual void enqueueBlock(std::shared_ptr<zel::Task> task, bool ahead) = 0;
};

} // namespace ZelUnified::Processing
