#pragma once

#include <unified/TaskDispatcher.h>

#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace testing_host {

/// A background dispatcher without a thread: tasks are queued until the test runs them.
class HeldTaskDispatcher final : public ZelUnified::Processing::TaskDispatcher {
public:
    void enqueue(std::shared_ptr<zel::Task> task) override;
    void enqueue(std::function<void()> work, const std::string& name) override;

    std::vector<std::string> getTaskNames() const;
    /// Runs all queued tasks, including those that they post.
    void runAll();
    /// Drops all queued tasks.
    void clear();

private:
    mutable std::mutex mutex;
    std::deque<std::shared_ptr<zel::Task>> tasks;
};

} // namespace testing_host
