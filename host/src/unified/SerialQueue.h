#pragma once

#include <kyr/AnnotatedMutex.h>
#include <zel/HostExport.h>
#include <zel/Task.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace ZelUnified::Processing {

/// Runs tasks one at a time, first in, first out, on one thread: its own, or a thread that pumps. Tasks run and are
/// destroyed with no lock held; an exception of a task is logged with the task's name. Any thread, unless an operation
/// says otherwise.
class LUMORA_HOST_API SerialQueue {
public:
    enum class Mode { OwnThread, Pumped };

    explicit SerialQueue(Mode mode);
    /// Ends the queue. Joins the queue's own thread, unless the destructor runs on it.
    ~SerialQueue();
    SerialQueue(const SerialQueue&) = delete;
    SerialQueue& operator=(const SerialQueue&) = delete;

    /// Starts the thread, or makes the calling thread the owner of a pumped queue. Tasks that were queued before are
    /// run.
    void start();
    /// Makes the calling thread the owner of a running pumped queue.
    void claim();
    /// Returns true on the thread that runs the tasks. Costs one atomic read.
    bool isOwner() const noexcept;

    /// Appends the task; with `ahead`, inserts it before the queued tasks. Returns false if the task is null, or if it
    /// is dropped because the queue has ended.
    bool enqueue(std::shared_ptr<zel::Task> task, bool ahead);
    /// Returns after the task has run. If the caller is the owner, or if the queue does not run, the task runs
    /// immediately on the calling thread.
    void enqueueBlock(std::shared_ptr<zel::Task> task, bool ahead);
    /// Sets a callback that is called on the posting thread after each posted task; empty for none.
    void setPostedCallback(std::function<void()> callback);

    /// For pumped queues, on the owner's thread: runs the next task. Returns false if no task is queued or the caller
    /// is not the owner.
    bool pumpNext();
    /// For pumped queues, on the owner's thread: runs all queued tasks, including those that they post.
    void pumpAll();
    /// Waits until a task is queued. Returns false on timeout or if the queue has ended.
    bool waitForTask(std::chrono::milliseconds timeout);

    /// Waits until every task posted before the call has run; does not wait for later ones. On the owner's thread it
    /// runs them itself. Returns immediately if the queue was never started.
    void flush();
    /// Returns a mark that identifies all tasks posted so far.
    std::uint64_t getMark() const;
    /// Waits until the tasks before the mark have run. Returns false on timeout. Must not be called on the owner's
    /// thread.
    bool flushFor(std::uint64_t mark, std::chrono::milliseconds timeout);
    /// On the owner's thread: runs the tasks for which the owner of `other` waits in enqueueBlock(), ahead of the rest.
    /// This prevents a deadlock while the calling thread waits for `other`.
    void runTasksAwaitedBy(const SerialQueue& other);
    /// Returns true if the owner of `other` waits for a task that runs here. Waiting for `other` in such a task would
    /// deadlock.
    bool isAwaitedBy(const SerialQueue& other) const;

    /// Closes the queue: new tasks are dropped with a warning, queued tasks still run.
    void close();
    /// Closes the queue, runs the queued tasks if the calling thread can (otherwise drops them with a warning) and ends
    /// the thread. Joins the queue's own thread, unless called on it; that thread then ends after the current task.
    void end();

private:
    class Core;
    const std::shared_ptr<Core> core; ///< Shared with the thread.
    KyrCoreUtils::AnnotatedMutex<> threadMutex;
    std::thread thread LUMORA_GUARDED_BY(threadMutex);
};

} // namespace ZelUnified::Processing
