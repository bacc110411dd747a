#include "unified/SerialQueue.h"

#include "Task.h"

#include <LogRecorder.h>
#include <Signal.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;
using testing_host::LogRecorder;
using testing_host::Signal;
using unified_test::task;
using ZelUnified::Processing::SerialQueue;

namespace {

/// A task that reports its destruction.
class TaskWithDestructor final : public zel::Task {
public:
    explicit TaskWithDestructor(std::function<void()> whenDestroyed) : onDeath(std::move(whenDestroyed)) {}
    ~TaskWithDestructor() override { onDeath(); }
    void run() override {}
    std::string getName() const override { return "dying"; }

private:
    std::function<void()> onDeath;
};

} // namespace

TEST(SerialQueue, RunsTasksInTheOrderOfPosting) {
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    std::vector<int> order;
    queue.start();
    for (int i = 0; i < 100; ++i) {
        queue.enqueue(task([&order, i] { order.push_back(i); }), false);
    }
    queue.flush();
    ASSERT_EQ(order.size(), 100U);
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(SerialQueue, KeepsTheOrderOfEachPostingThread) {
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    queue.start();
    std::vector<std::vector<int>> orders(8);
    std::vector<std::thread> threads;
    for (auto& order : orders) {
        threads.emplace_back([&queue, &order] {
            for (int i = 0; i < 200; ++i) {
                queue.enqueue(task([&order, i] { order.push_back(i); }), false);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    queue.flush();
    for (const auto& order : orders) {
        EXPECT_EQ(order.size(), 200U);
        EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
    }
}

TEST(SerialQueue, RunsTasksQueuedBeforeTheStart) {
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    std::vector<int> order;
    queue.enqueue(task([&] { order.push_back(1); }), false);
    queue.enqueue(task([&] { order.push_back(2); }), false);
    queue.flush();
    EXPECT_TRUE(order.empty());
    queue.start();
    queue.flush();
    EXPECT_THAT(order, ElementsAre(1, 2));
}

TEST(SerialQueue, ATaskPostedAheadRunsBeforeQueuedTasks) {
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    std::vector<int> order;
    queue.enqueue(task([&] { order.push_back(1); }), false);
    queue.enqueue(task([&] { order.push_back(2); }), true);
    queue.start();
    queue.flush();
    EXPECT_THAT(order, ElementsAre(2, 1));
}

TEST(SerialQueue, IgnoresANullTask) {
    const LogRecorder log;
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    queue.start();
    EXPECT_FALSE(queue.enqueue(nullptr, false));
    queue.enqueueBlock(nullptr, false);
    queue.flush();
    EXPECT_TRUE(log.getRecords().empty());
}

TEST(SerialQueue, AThrowingTaskIsLoggedByNameAndTheNextOneRuns) {
    const LogRecorder log;
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    bool ran = false;
    queue.start();
    queue.enqueue(task([] { throw std::runtime_error("broken"); }, "ConfigServiceImpl::OnConfigChanged"), false);
    queue.enqueue(task([] { throw 1; }, "odd"), false);
    queue.enqueue(task([&] { ran = true; }), false);
    queue.flush();
    EXPECT_TRUE(ran);
    EXPECT_THAT(
        log.getTexts(ZelLogLevel::Error),
        ElementsAre(AllOf(HasSubstr("ConfigServiceImpl::OnConfigChanged"), HasSubstr("broken")), HasSubstr("odd")));
    EXPECT_EQ(log.getRecords().front().logger, "UnifiedFactory-Dispatcher");
}

TEST(SerialQueue, EnqueueBlockReturnsWhenTheTaskHasRunOnTheQueuesThread) {
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    queue.start();
    std::thread::id ranOn;
    queue.enqueueBlock(task([&] { ranOn = std::this_thread::get_id(); }), false);
    EXPECT_NE(ranOn, std::thread::id());
    EXPECT_NE(ranOn, std::this_thread::get_id());
}

TEST(SerialQueue, AThrowingTaskReleasesItsWaiter) {
    const LogRecorder log;
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    queue.start();
    queue.enqueueBlock(task([] { throw std::runtime_error("broken"); }, "blocking"), false);
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), ElementsAre(HasSubstr("blocking")));
}

TEST(SerialQueue, EnqueueBlockOnTheQueuesThreadRunsTheTaskBeforeQueuedTasks) {
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    std::vector<int> order;
    queue.enqueue(task([&] {
                      queue.enqueue(task([&] { order.push_back(2); }), false);
                      queue.enqueueBlock(task([&] { order.push_back(1); }), false);
                  }),
                  false);
    queue.start();
    queue.flush();
    queue.flush(); // for the task posted by the first one
    EXPECT_THAT(order, ElementsAre(1, 2));
}

TEST(SerialQueue, EnqueueBlockOnAStoppedQueueRunsTheTaskOnTheCallersThread) {
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    std::vector<std::thread::id> ranOn;
    const auto work = [&] { ranOn.push_back(std::this_thread::get_id()); };
    queue.enqueueBlock(task(work), false);
    queue.start();
    queue.end();
    queue.enqueueBlock(task(work), false);
    EXPECT_THAT(ranOn, ElementsAre(std::this_thread::get_id(), std::this_thread::get_id()));
}

TEST(SerialQueue, EnqueueOnAnEndedQueueDropsTheTaskWithAWarning) {
    const LogRecorder log;
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    queue.start();
    queue.end();
    bool ran = false;
    bool died = false;
    EXPECT_FALSE(queue.enqueue(task([&] { ran = true; }, "late"), false));
    queue.enqueue(std::make_shared<TaskWithDestructor>([&] { died = true; }), false);
    queue.flush();
    EXPECT_FALSE(ran);
    EXPECT_TRUE(died);
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning), ElementsAre(HasSubstr("late"), HasSubstr("dying")));
}

TEST(SerialQueue, EndingTheQueueRunsQueuedTasks) {
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    int runs = 0;
    Signal go;
    queue.start();
    queue.enqueue(task([&] { EXPECT_TRUE(go.wait()); }), false);
    for (int i = 0; i < 10; ++i) {
        queue.enqueue(task([&] { ++runs; }), false);
    }
    queue.close();
    EXPECT_FALSE(queue.enqueue(task([&] { ++runs; }), false));
    go.set();
    queue.end();
    EXPECT_EQ(runs, 10);
}

TEST(SerialQueue, DestroyingAQueueThatWasNeverStartedDropsItsTasks) {
    const LogRecorder log;
    bool died = false;
    {
        SerialQueue queue(SerialQueue::Mode::OwnThread);
        queue.enqueue(std::make_shared<TaskWithDestructor>([&] { died = true; }), false);
    }
    EXPECT_TRUE(died);
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning), ElementsAre(HasSubstr("dying")));
}

TEST(SerialQueue, DestroysATaskWithoutItsLockBeforeReleasingTheWaiter) {
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    std::atomic<bool> died = false;
    bool ranAfterwards = false;
    queue.start();
    queue.enqueueBlock(std::make_shared<TaskWithDestructor>([&] {
                           queue.enqueue(task([&] { ranAfterwards = true; }), false);
                           died = true;
                       }),
                       false);
    EXPECT_TRUE(died);
    queue.flush();
    EXPECT_TRUE(ranAfterwards);
}

TEST(SerialQueue, OnlyTheQueuesThreadIsTheOwnerUntilTheQueueEnds) {
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    EXPECT_FALSE(queue.isOwner());
    queue.start();
    bool ownerInside = false;
    queue.enqueueBlock(task([&] { ownerInside = queue.isOwner(); }), false);
    EXPECT_TRUE(ownerInside);
    EXPECT_FALSE(queue.isOwner());
    queue.end();
    EXPECT_FALSE(queue.isOwner());
}

TEST(SerialQueue, FlushWaitsForEveryTaskPostedBefore) {
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    int runs = 0;
    queue.start();
    for (int i = 0; i < 50; ++i) {
        queue.enqueue(task([&] { ++runs; }), false);
    }
    queue.flush();
    EXPECT_EQ(runs, 50);
}

TEST(SerialQueue, FlushOnTheQueuesThreadRunsQueuedTasks) {
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    bool ranBeforeFlushReturned = false;
    queue.start();
    queue.enqueueBlock(task([&] {
                           bool ran = false;
                           queue.enqueue(task([&] { ran = true; }), false);
                           queue.flush();
                           ranBeforeFlushReturned = ran;
                       }),
                       false);
    EXPECT_TRUE(ranBeforeFlushReturned);
}

TEST(SerialQueue, FlushForTimesOutWhileATaskRuns) {
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    Signal go;
    queue.start();
    queue.enqueue(task([&] { EXPECT_TRUE(go.wait()); }), false);
    const auto mark = queue.getMark();
    EXPECT_FALSE(queue.flushFor(mark, std::chrono::milliseconds(1)));
    go.set();
    queue.flush();
    EXPECT_TRUE(queue.flushFor(mark, std::chrono::milliseconds(0)));
}

TEST(SerialQueue, FlushDoesNotWaitForTasksPostedLater) {
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    std::atomic<bool> ended = false;
    const std::function<void()> again = [&] {
        if (!ended) {
            queue.enqueue(task(again), false);
        }
    };
    queue.enqueue(task(again), false);
    queue.start();
    queue.flush();
    ended = true;
    queue.end();
}

TEST(SerialQueue, ATaskMayEndTheQueueItRunsOn) {
    SerialQueue queue(SerialQueue::Mode::OwnThread);
    bool ranWhatWaited = false;
    Signal ended;
    queue.enqueue(task([&] {
                      queue.end();
                      ended.set();
                  }),
                  false);
    queue.enqueue(task([&] { ranWhatWaited = true; }), false);
    queue.start();
    ASSERT_TRUE(ended.wait());
    EXPECT_TRUE(ranWhatWaited);
}

TEST(SerialQueue, ATaskMayHoldTheLastReferenceToItsQueue) {
    auto queue = std::make_shared<SerialQueue>(SerialQueue::Mode::OwnThread);
    Signal released;
    Signal done;
    queue->start();
    queue->enqueue(task([last = queue, &released, &done]() mutable {
                       EXPECT_TRUE(released.wait());
                       last.reset();
                       done.set();
                   }),
                   false);
    queue.reset();
    released.set();
    EXPECT_TRUE(done.wait());
}

TEST(SerialQueue, RunsTasksAwaitedByAnotherQueueBeforeAllOthers) {
    SerialQueue waiting(SerialQueue::Mode::OwnThread);
    SerialQueue pumped(SerialQueue::Mode::Pumped);
    std::vector<std::string> order;
    pumped.start();
    waiting.start();
    pumped.enqueue(task([&] { order.push_back("ordinary"); }), false);
    waiting.enqueue(task([&] { pumped.enqueueBlock(task([&] { order.push_back("awaited"); }), false); }), false);
    const auto mark = waiting.getMark();
    while (!waiting.flushFor(mark, std::chrono::milliseconds(1))) {
        pumped.runTasksAwaitedBy(waiting);
    }
    EXPECT_THAT(order, ElementsAre("awaited"));
    pumped.pumpAll();
    EXPECT_THAT(order, ElementsAre("awaited", "ordinary"));
}
