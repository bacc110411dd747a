#pragma once

#include "HeldTasks.h"

#include <unified/TaskDispatcher.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace testing_host {

/// A background dispatcher without a thread: tasks are queued until the test runs them.
class HeldTaskDispatcher final : public ZelUnified::Processing::TaskDispatcher {
public:
    void enqueue(std::shared_ptr<zel::Task> task) override;
    void enqueue(std::function<void()> work, const std::string& name) override;

    std::vector<std::string> getTaskNames() const { return tasks.getNames(); }
    /// Runs all queued tasks, including those that they post.
    void runAll() { tasks.runAll(); }
    /// Drops all queued tasks.
    void clear() { tasks.clear(); }

private:
    HeldTasks tasks;
};

} // namespace testing_host
