#pragma once

#include <zel/HostExport.h>
#include <zel/Task.h>

#include <functional>
#include <memory>
#include <string>

namespace ZelUnified::Processing {

/// The background thread: work that must not run on the caller's. First in, first out.
class LUMORA_HOST_API TaskDispatcher {
public:
    virtual ~TaskDispatcher() = default;

    /// Posts the task and returns. A null task is ignored; after the dispatcher's end the task is dropped with a
    /// warning. A task that throws is logged with its name and the next one runs.
    virtual void enqueue(std::shared_ptr<zel::Task> task) = 0;
    virtual void enqueue(std::function<void()> work, const std::string& name) = 0;
};

} // namespace ZelUnified::Processing
