#pragma once

#include <kyr/AnnotatedMutex.h>
#include <zel/Task.h>

#include <deque>
#include <memory>
#include <string>
#include <vector>

namespace testing_host {

/// The queue of a dispatcher without a thread. Runs and destroys tasks with no lock held. Any thread.
class HeldTasks {
public:
    /// Adds the task at the end, or before all others if `ahead` is true. Ignores null.
    void add(std::shared_ptr<zel::Task> task, bool ahead);

    std::vector<std::string> getNames() const;
    /// Runs all tasks, including those that they add.
    void runAll();
    void clear();

private:
    /// Returns null if there is no task.
    std::shared_ptr<zel::Task> removeFirst();

    mutable KyrCoreUtils::AnnotatedMutex<> mutex;
    std::deque<std::shared_ptr<zel::Task>> tasks LUMORA_GUARDED_BY(mutex);
};

} // namespace testing_host
