#pragma once

#include <zel/HostExport.h>
#include <zel/Task.h>

#include <memory>

namespace ZelUnified::Processing {

/// Runs tasks on the one thread that owns all public objects, first in, first out.
class LUMORA_HOST_API ServicesDispatcher {
public:
    virtual ~ServicesDispatcher() = default;

    /// Returns true if the caller is on the dispatcher's thread. Any thread; costs one atomic read.
    virtual bool checkForUpdateAccess() const = 0;

    /// Posts the task and returns. With `ahead` the task is inserted before the queued ones. Ignores a null task. After
    /// the dispatcher has ended, drops the task with a warning.
    virtual void enqueue(std::shared_ptr<zel::Task> task, bool ahead) = 0;

    /// Posts the task and returns after it has run. If called on the dispatcher's own thread, or if the dispatcher does
    /// not run, runs the task immediately on the caller's thread. A task that throws is logged, and the call returns
    /// normally.
    virtual void enqueueBlock(std::shared_ptr<zel::Task> task, bool ahead) = 0;
};

} // namespace ZelUnified::Processing
