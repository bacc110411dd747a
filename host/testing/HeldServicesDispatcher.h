#pragma once

#include <unified/ServicesDispatcher.h>

#include <atomic>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace testing_host {

/// A services dispatcher without a thread: tasks wait until the test runs them. The thread that made it owns it.
class HeldServicesDispatcher final : public ZelUnified::Processing::ServicesDispatcher {
public:
    bool checkForUpdateAccess() const override;
    void enqueue(std::shared_ptr<zel::Task> task, bool ahead) override;
    /// Runs the task at once.
    void enqueueBlock(std::shared_ptr<zel::Task> task, bool ahead) override;

    /// From here on no thread has access until claim() or runAll(): everything is posted.
    void disown();
    /// Gives access to the calling thread.
    void claim();

    std::vector<std::string> getTaskNames() const;
    /// Runs what waits, and what that posts, with access for the calling thread.
    void runAll();
    /// Drops what waits.
    void clear();

private:
    std::atomic<std::thread::id> owner = std::this_thread::get_id();
    mutable std::mutex mutex; ///< Guards the tasks.
    std::deque<std::shared_ptr<zel::Task>> tasks;
};

} // namespace testing_host
