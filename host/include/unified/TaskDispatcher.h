#pragma once

#include <zel/HostExport.h>
#include <zel/Task.h>

#include <functional>
#include <memory>
#include <string>

namespace ZelUnified::Processing {

/// Runs tasks on the background thread, first in, first out: work that must not run on the caller's thread.
class LUMORA_HOST_API TaskDispatcher {
public:
    virtual ~TaskDispatcher() = default;

    /// Posts the task and returns. Ignores a null task. After the dispatcher has ended, drops the task with a warning.
    /// A task that throws is logged with its name, and the next one runs.
    virtual void enqueue(std::shared_ptr<zel::Task> task) = 0;
    virtual void enqueue(std::function<void()> work, const std::string& name) = 0;
};

} // namespace ZelUnified::Processing
