#pragma once

#include <unified/ServicesDispatcherCallback.h>
#include <unified/UnifiedService.h>

#include <chrono>
#include <memory>

namespace ZelUnified {

/// What a program with a loop of its own needs of the host: services by number, and the services dispatcher to pump.
class LUMORA_HOST_API ServiceFactory {
public:
    virtual ~ServiceFactory() = default;

    /// Empty when no service is filed under the number. Any thread.
    virtual std::shared_ptr<UnifiedService> getService(unsigned int id) = 0;
    /// Ends everything; no service is found afterwards.
    virtual void reset() = 0;
    /// Who is told of each posted task; empty for nobody.
    virtual void setDispatcherCallback(std::shared_ptr<ServicesDispatcherCallback> callback) = 0;
    /// The calling thread is the dispatcher's from here on.
    virtual void resetDispatcherThread() = 0;
    /// False when no task came in time. Any thread.
    virtual bool waitForDispatcherTask(std::chrono::milliseconds timeout) = 0;
    /// Runs the next task; false when none waits, or on another thread than the dispatcher's.
    virtual bool pumpNextDispatcherTask() = 0;
    /// Runs what waits, and what that posts.
    virtual void pumpAllDispatcherTasks() = 0;
};

} // namespace ZelUnified
