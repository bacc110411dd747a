#pragma once

#include <zel/HostExport.h>
#include <zel/Task.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

namespace ZelUnified::Processing {

/// Runs tasks one at a time, first in first out, on one thread: its own, or one that pumps. Tasks run and are destroyed
/// with no lock held; what a task throws is logged with its name. Every operation may be called on any thread, unless
/// it says otherwise.
class LUMORA_HOST_API SerialQueue {
public:
    enum class Mode { OwnThread, Pumped };

    explicit SerialQueue(Mode mode);
    /// Ends the queue. The queue's own thread is waited for, unless it runs the destructor itself.
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    /// Starts the thread, or makes the calling one the owner of a pumped queue. What was queued before is run.
    void start();
    /// Makes the calling thread the owner of a running pumped queue.
    void claim();
    /// True on the thread that runs the tasks. One atomic read.
    bool isOwner() const noexcept;

    /// False when the task is null, or dropped because the queue has ended. `ahead` goes before what waits.
    bool enqueue(std::shared_ptr<zel::Task> task, bool ahead);
    /// Returns when the task has run: at once on the calling thread when that is the owner, or when the queue does not
    /// run.
    void enqueueBlock(std::shared_ptr<zel::Task> task, bool ahead);
    /// Is called after each posted task, on the posting thread. Empty for nothing.
    void setPostedCallback(std::function<void()> callback);

    /// Pumped queues, on the owner's thread: runs the next task; false when none waits or the caller is not the owner.
    bool pumpNext();
    /// Pumped queues, on the owner's thread: runs what waits, and what that posts.
    void pumpAll();
    /// Waits until a task waits; false when none came in time or the queue has ended.
    bool waitForTask(std::chrono::milliseconds timeout);

    /// Waits until every task posted before the call has run; a stream of new ones does not hold it up. On the owner's
    /// thread it runs them itself. Returns at once on a queue that was never started.
    void flush();
    /// Stands for the tasks posted so far.
    std::uint64_t getMark() const;
    /// Waits until the tasks of the mark have run, not on the owner's thread; false when the deadline passed.
    bool flushFor(std::uint64_t mark, std::chrono::milliseconds timeout);
    /// On the owner's thread: runs the tasks for which the owner of `other` waits in enqueueBlock(), ahead of the rest.
    /// A thread that waits for `other` lets it come to an end this way.
    void runTasksAwaitedBy(const SerialQueue& other);
    /// Whether the owner of `other` waits for a task that runs here. To wait for `other` from such a task is a
    /// deadlock.
    bool isAwaitedBy(const SerialQueue& other) const;

    /// From here on new tasks are dropped with a warning; what waits is still run.
    void close();
    /// Closes, runs what waits where the calling thread can (it drops the rest with a warning) and ends the thread: one
    /// of its own is joined, unless it is the caller, and then ends after its task.
    void end();

private:
    class Core;
    const std::shared_ptr<Core> core; ///< The thread holds it too.
    std::mutex threadMutex;           ///< Guards `thread`.
    std::thread thread;
};

} // namespace ZelUnified::Processing
