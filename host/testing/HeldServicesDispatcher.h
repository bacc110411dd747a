#pragma once

#include "HeldTasks.h"

#include <unified/ServicesDispatcher.h>

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace testing_host {

/// A services dispatcher without a thread: tasks are queued until the test runs them. The thread that constructs it is
/// its owner.
class HeldServicesDispatcher final : public ZelUnified::Processing::ServicesDispatcher {
public:
    bool checkForUpdateAccess() const override;
    void enqueue(std::shared_ptr<zel::Task> task, bool ahead) override;
    /// Runs the task immediately.
    void enqueueBlock(std::shared_ptr<zel::Task> task, bool ahead) override;

    /// Removes access from all threads until claim() or runAll(); everything is posted.
    void disown();
    /// Gives access to the calling thread.
    void claim();

    std::vector<std::string> getTaskNames() const { return tasks.getNames(); }
    /// Runs all queued tasks, including those that they post. The calling thread has access during the call.
    void runAll();
    /// Drops all queued tasks.
    void clear() { tasks.clear(); }

private:
    std::atomic<std::thread::id> owner = std::this_thread::get_id();
    HeldTasks tasks;
};

} // namespace testing_host
