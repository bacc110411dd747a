#pragma once

#include <unified/ServicesDispatcherCallback.h>
#include <unified/UnifiedService.h>

#include <chrono>
#include <memory>

namespace ZelUnified {

/// The host's interface for a program with its own event loop: returns services by id and lets the program pump the
/// services dispatcher.
class LUMORA_HOST_API ServiceFactory {
public:
    virtual ~ServiceFactory() = default;

    /// Returns the service registered under `id`; null if there is none. Any thread.
    virtual std::shared_ptr<UnifiedService> getService(unsigned int id) = 0;
    /// Ends the host; afterwards getService() returns null.
    virtual void reset() = 0;
    /// Sets the callback that is called for each posted task; null for none.
    virtual void setDispatcherCallback(std::shared_ptr<ServicesDispatcherCallback> callback) = 0;
    /// Makes the calling thread the dispatcher's thread.
    virtual void resetDispatcherThread() = 0;
    /// Waits until a task is posted. Returns false on timeout. Any thread.
    virtual bool waitForDispatcherTask(std::chrono::milliseconds timeout) = 0;
    /// Runs the next task. Returns false if no task is queued, or if called on another thread than the dispatcher's.
    virtual bool pumpNextDispatcherTask() = 0;
    /// Runs all queued tasks, including those that they post.
    virtual void pumpAllDispatcherTasks() = 0;
};

} // namespace ZelUnified
