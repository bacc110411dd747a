#pragma once

#include <unified/TaskDispatcher.h>

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace config_model {

/// The time of a history: each reading is later than all earlier ones.
using HistoryClock = std::atomic<std::size_t>;

/// The queue of a dispatcher that a thread of the test runs. Records which thread posted each task, and when.
class RecordedQueue {
public:
    struct Entry {
        std::string name;
        std::thread::id thread;
        std::size_t time = 0;
    };

    explicit RecordedQueue(HistoryClock& historyClock) : clock(historyClock) {}

    void post(std::shared_ptr<zel::Task> task);
    /// Removes the next task. Returns null if there is none. `position` is the task's position among all posted ones.
    std::shared_ptr<zel::Task> take(std::size_t& position);
    /// Waits for a task. Returns false if there is none and the queue is closed.
    bool wait();
    /// Ends every wait once no task is left.
    void close();
    /// Forgets the tasks that were posted so far. Call only if all of them were taken.
    void forget();
    std::vector<Entry> getEntries() const;

private:
    HistoryClock& clock;
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::deque<std::shared_ptr<zel::Task>> tasks;
    std::vector<Entry> entries;
    std::size_t taken = 0;
    bool closed = false;
};

} // namespace config_model
