#include "SerialQueue.h"

#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>
#include <kyr/WaitLock.h>
#include <zel/ZelLog.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <future>
#include <optional>
#include <utility>
#include <vector>

namespace ZelUnified::Processing {

namespace {

ZelLogger& queueLogger = ZelLogger_getLogger("UnifiedFactory-Dispatcher");

void reportFailure(const zel::Task& task, const char* reason) {
    ZelLog(queueLogger, ZelLogLevel::Error, ZEL_HERE, "Task " + task.getName() + " failed: " + reason);
}

void runGuarded(zel::Task& task) {
    try {
        task.run();
    } catch (const std::exception& failure) {
        reportFailure(task, failure.what());
    } catch (...) {
        reportFailure(task, "unknown exception");
    }
}

} // namespace

class SerialQueue::Core {
public:
    explicit Core(Mode queueMode) : mode(queueMode) {}

    void runThread() {
        owner.store(std::this_thread::get_id());
        while (waitForTask(std::nullopt)) {
            runNext();
        }
        owner.store(std::thread::id());
    }

    bool start() {
        const KyrCoreUtils::LockGuard lock(mutex);
        if (state != State::Waiting) {
            return false;
        }
        state = State::Running;
        return true;
    }

    void claim() { owner.store(std::this_thread::get_id()); }
    std::thread::id getOwner() const noexcept { return owner.load(); }
    bool isOwner() const noexcept { return owner.load() == std::this_thread::get_id(); }

    bool isRunning() const {
        const KyrCoreUtils::LockGuard lock(mutex);
        return state == State::Running;
    }

    bool post(std::shared_ptr<zel::Task>& task, bool ahead, std::shared_ptr<std::promise<void>> finished = nullptr) {
        std::function<void()> posted;
        {
            const KyrCoreUtils::LockGuard lock(mutex);
            // A caller that blocks must not wait for a queue that does not run.
            if (state == State::Closed || (finished && state != State::Running)) {
                return false;
            }
            const auto waiter = finished ? std::this_thread::get_id() : std::thread::id();
            entries.insert(ahead ? entries.begin() : entries.end(),
                           Entry{std::move(task), std::move(finished), waiter, ++lastNumber});
            posted = postedCallback;
        }
        changed.notify_all();
        if (posted) {
            posted();
        }
        return true;
    }

    void setPostedCallback(std::function<void()> callback) {
        const KyrCoreUtils::LockGuard lock(mutex);
        postedCallback.swap(callback);
    }

    bool runNext() {
        return runFirst([](const Entry&) { return true; });
    }

    void runAwaitedBy(std::thread::id waiter) {
        while (runFirst([&](const Entry& entry) { return entry.waiter == waiter; })) {
        }
    }

    bool isRunningFor(std::thread::id waiter) const {
        const KyrCoreUtils::LockGuard lock(mutex);
        return std::any_of(running.begin(), running.end(), [&](const Running& task) { return task.waiter == waiter; });
    }

    bool pumpNext() { return mode == Mode::Pumped && isOwner() && runNext(); }

    /// Without a timeout, waits until a task is queued or the queue is closed.
    bool waitForTask(std::optional<std::chrono::milliseconds> timeout) {
        KyrCoreUtils::WaitLock lock(mutex);
        waitUntil(lock, timeout,
                  [this]() LUMORA_REQUIRES(mutex) { return !entries.empty() || state == State::Closed; });
        return !entries.empty();
    }

    std::uint64_t getMark() const {
        const KyrCoreUtils::LockGuard lock(mutex);
        return lastNumber;
    }

    bool isWaiting(std::uint64_t mark) const {
        const KyrCoreUtils::LockGuard lock(mutex);
        return holdsUpTo(mark, entries);
    }

    bool waitUntilRun(std::uint64_t mark, std::optional<std::chrono::milliseconds> timeout) {
        const auto done = [&]() LUMORA_REQUIRES(mutex) {
            return state == State::Waiting || !(holdsUpTo(mark, running) || holdsUpTo(mark, entries));
        };
        KyrCoreUtils::WaitLock lock(mutex);
        return waitUntil(lock, timeout, done);
    }

    void close() {
        {
            const KyrCoreUtils::LockGuard lock(mutex);
            state = State::Closed;
        }
        changed.notify_all();
    }

    void dropAll() {
        std::deque<Entry> dropped;
        {
            const KyrCoreUtils::LockGuard lock(mutex);
            dropped.swap(entries);
        }
        changed.notify_all();
        for (auto& entry : dropped) {
            warnOfDrop(*entry.task);
            entry.task.reset();
            if (entry.finished) {
                entry.finished->set_value();
            }
        }
        if (mode == Mode::Pumped) {
            owner.store(std::thread::id());
        }
    }

    static void warnOfDrop(const zel::Task& task) {
        ZelLog(queueLogger, ZelLogLevel::Warning, ZEL_HERE,
               "The dispatcher has ended, dropping task " + task.getName());
    }

    const Mode mode;

private:
    enum class State { Waiting, Running, Closed };

    struct Entry {
        std::shared_ptr<zel::Task> task;
        std::shared_ptr<std::promise<void>> finished; ///< Null unless a thread waits for the task.
        std::thread::id waiter;
        std::uint64_t number = 0; ///< Increases in the order of posting.
    };

    struct Running {
        std::thread::id waiter;
        std::uint64_t number;
    };

    template <class Tasks>
    static bool holdsUpTo(std::uint64_t mark, const Tasks& tasks) {
        return std::any_of(tasks.begin(), tasks.end(), [&](const auto& task) { return task.number <= mark; });
    }

    template <class Predicate>
    bool waitUntil(KyrCoreUtils::WaitLock& lock, std::optional<std::chrono::milliseconds> timeout, Predicate isDone) {
        if (timeout) {
            return changed.wait_for(lock.get(), *timeout, isDone);
        }
        changed.wait(lock.get(), isDone);
        return true;
    }

    template <class Predicate>
    bool runFirst(Predicate matches) {
        Entry entry;
        {
            const KyrCoreUtils::LockGuard lock(mutex);
            const auto found = std::find_if(entries.begin(), entries.end(), matches);
            if (found == entries.end()) {
                return false;
            }
            entry = std::move(*found);
            entries.erase(found);
            running.push_back({entry.waiter, entry.number});
        }
        runGuarded(*entry.task);
        entry.task.reset();
        {
            const KyrCoreUtils::LockGuard lock(mutex);
            running.pop_back();
        }
        changed.notify_all();
        if (entry.finished) {
            entry.finished->set_value();
        }
        return true;
    }

    std::atomic<std::thread::id> owner{};

    mutable KyrCoreUtils::AnnotatedMutex<> mutex; ///< Never held while a task runs or is destroyed.
    std::condition_variable changed;
    State state LUMORA_GUARDED_BY(mutex) = State::Waiting;
    std::deque<Entry> entries LUMORA_GUARDED_BY(mutex);
    std::uint64_t lastNumber LUMORA_GUARDED_BY(mutex) = 0;
    std::vector<Running> running LUMORA_GUARDED_BY(mutex); ///< The innermost one is last.
    std::function<void()> postedCallback LUMORA_GUARDED_BY(mutex);
};

SerialQueue::SerialQueue(Mode mode) : core(std::make_shared<Core>(mode)) {}

SerialQueue::~SerialQueue() {
    end();
    const KyrCoreUtils::LockGuard lock(threadMutex);
    if (thread.joinable()) {
        thread.detach();
    }
}

void SerialQueue::start() {
    const KyrCoreUtils::LockGuard lock(threadMutex);
    if (!core->start()) {
        return;
    }
    if (core->mode == Mode::Pumped) {
        core->claim();
        return;
    }
    thread = std::thread([running = core] { running->runThread(); });
}

void SerialQueue::claim() {
    if (core->mode == Mode::Pumped && core->isRunning()) {
        core->claim();
    }
}

bool SerialQueue::isOwner() const noexcept {
    return core->isOwner();
}

bool SerialQueue::enqueue(std::shared_ptr<zel::Task> task, bool ahead) {
    if (!task) {
        return false;
    }
    if (core->post(task, ahead)) {
        return true;
    }
    Core::warnOfDrop(*task);
    return false;
}

void SerialQueue::enqueueBlock(std::shared_ptr<zel::Task> task, bool ahead) {
    if (!task) {
        return;
    }
    if (!isOwner()) {
        const auto finished = std::make_shared<std::promise<void>>();
        if (core->post(task, ahead, finished)) {
            finished->get_future().wait();
            return;
        }
    }
    runGuarded(*task);
}

void SerialQueue::setPostedCallback(std::function<void()> callback) {
    core->setPostedCallback(std::move(callback));
}

bool SerialQueue::pumpNext() {
    return core->pumpNext();
}

void SerialQueue::pumpAll() {
    while (pumpNext()) {
    }
}

bool SerialQueue::waitForTask(std::chrono::milliseconds timeout) {
    return core->waitForTask(timeout);
}

void SerialQueue::flush() {
    const auto mark = core->getMark();
    if (!isOwner()) {
        core->waitUntilRun(mark, std::nullopt);
        return;
    }
    while (core->isWaiting(mark)) {
        core->runNext();
    }
}

std::uint64_t SerialQueue::getMark() const {
    return core->getMark();
}

bool SerialQueue::flushFor(std::uint64_t mark, std::chrono::milliseconds timeout) {
    return core->waitUntilRun(mark, timeout);
}

void SerialQueue::runTasksAwaitedBy(const SerialQueue& other) {
    const auto waiter = other.core->getOwner();
    if (isOwner() && waiter != std::thread::id()) {
        core->runAwaitedBy(waiter);
    }
}

bool SerialQueue::isAwaitedBy(const SerialQueue& other) const {
    const auto waiter = other.core->getOwner();
    return waiter != std::thread::id() && core->isRunningFor(waiter);
}

void SerialQueue::close() {
    core->close();
}

void SerialQueue::end() {
    core->close();
    if (isOwner()) {
        flush();
    }
    const bool joins = core->mode == Mode::OwnThread && !isOwner();
    if (joins) {
        const KyrCoreUtils::LockGuard lock(threadMutex);
        if (thread.joinable()) {
            thread.join();
        }
    }
    core->dropAll();
}

} // namespace ZelUnified::Processing
