#pragma once

#include <unified/ServicesDispatcher.h>
#include <unified/TaskDispatcher.h>

#include <RecordingFactory.h>

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
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

/// A services dispatcher whose thread is the one that constructs it.
class RecordingServicesDispatcher final : public ZelUnified::Processing::ServicesDispatcher {
public:
    explicit RecordingServicesDispatcher(HistoryClock& clock) : queue(clock) {}

    bool checkForUpdateAccess() const override { return std::this_thread::get_id() == owner; }
    void enqueue(std::shared_ptr<zel::Task> task, bool ahead) override;
    void enqueueBlock(std::shared_ptr<zel::Task> task, bool ahead) override;

    RecordedQueue queue;

private:
    const std::thread::id owner = std::this_thread::get_id();
};

class RecordingTaskDispatcher final : public ZelUnified::Processing::TaskDispatcher {
public:
    explicit RecordingTaskDispatcher(HistoryClock& clock) : queue(clock) {}

    void enqueue(std::shared_ptr<zel::Task> task) override { queue.post(std::move(task)); }
    void enqueue(std::function<void()> work, const std::string& name) override;

    RecordedQueue queue;
};

/// A factory with these dispatchers.
class HistoryFactory final : public testing_host::RecordingFactory {
public:
    explicit HistoryFactory(HistoryClock& clock)
        : services(std::make_shared<RecordingServicesDispatcher>(clock)),
          background(std::make_shared<RecordingTaskDispatcher>(clock)) {}

    std::shared_ptr<ZelUnified::Processing::ServicesDispatcher> getServicesDispatcher() override { return services; }
    std::shared_ptr<ZelUnified::Processing::TaskDispatcher> getBackgroundDispatcher() override { return background; }

    const std::shared_ptr<RecordingServicesDispatcher> services;
    const std::shared_ptr<RecordingTaskDispatcher> background;
};

} // namespace config_model
