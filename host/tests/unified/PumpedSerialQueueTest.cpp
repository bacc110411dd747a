#include "Task.h"
#include "unified/SerialQueue.h"

#include <LogRecorder.h>
#include <Signal.h>

#include <chrono>
#include <thread>
#include <vector>

using testing::ElementsAre;
using testing::HasSubstr;
using testing_host::LogRecorder;
using testing_host::Signal;
using unified_test::task;
using ZelUnified::Processing::SerialQueue;

TEST(PumpedSerialQueue, RunsOneTaskAtEachPump) {
    SerialQueue queue(SerialQueue::Mode::Pumped);
    std::vector<int> order;
    queue.start();
    queue.enqueue(task([&] { order.push_back(1); }), false);
    queue.enqueue(task([&] { order.push_back(2); }), false);
    EXPECT_TRUE(order.empty());
    EXPECT_TRUE(queue.pumpNext());
    EXPECT_THAT(order, ElementsAre(1));
    EXPECT_TRUE(queue.pumpNext());
    EXPECT_THAT(order, ElementsAre(1, 2));
    EXPECT_FALSE(queue.pumpNext());
}

TEST(PumpedSerialQueue, PumpAllAlsoRunsTasksPostedByTasks) {
    SerialQueue queue(SerialQueue::Mode::Pumped);
    int runs = 0;
    queue.start();
    queue.enqueue(task([&] {
                      ++runs;
                      queue.enqueue(task([&] { ++runs; }), false);
                  }),
                  false);
    queue.pumpAll();
    EXPECT_EQ(runs, 2);
}

TEST(PumpedSerialQueue, PumpNextDoesNotCountATaskThatFlushHasRun) {
    SerialQueue queue(SerialQueue::Mode::Pumped);
    int runs = 0;
    queue.start();
    queue.enqueue(task([&] { ++runs; }), false);
    queue.flush();
    EXPECT_EQ(runs, 1);
    EXPECT_FALSE(queue.pumpNext());
    queue.enqueue(task([&] { ++runs; }), false);
    EXPECT_TRUE(queue.pumpNext());
    EXPECT_EQ(runs, 2);
}

TEST(PumpedSerialQueue, OnlyTheOwnerPumpsAndClaimTransfersOwnership) {
    SerialQueue queue(SerialQueue::Mode::Pumped);
    bool ran = false;
    queue.start();
    EXPECT_TRUE(queue.isOwner());
    queue.enqueue(task([&] { ran = true; }), false);
    std::thread([&] {
        EXPECT_FALSE(queue.isOwner());
        EXPECT_FALSE(queue.pumpNext());
        queue.claim();
        EXPECT_TRUE(queue.isOwner());
        EXPECT_TRUE(queue.pumpNext());
    }).join();
    EXPECT_FALSE(queue.isOwner());
    EXPECT_TRUE(ran);
}

TEST(PumpedSerialQueue, PumpingReleasesAThreadThatWaitsForTheTask) {
    SerialQueue queue(SerialQueue::Mode::Pumped);
    queue.start();
    const auto owner = std::this_thread::get_id();
    std::thread::id ranOn;
    std::thread waiter([&] { queue.enqueueBlock(task([&] { ranOn = std::this_thread::get_id(); }), false); });
    ASSERT_TRUE(queue.waitForTask(std::chrono::seconds(60)));
    queue.pumpAll();
    waiter.join();
    EXPECT_EQ(ranOn, owner);
}

TEST(PumpedSerialQueue, WaitForTaskReturnsFalseOnTimeoutAndWhenTheQueueCloses) {
    SerialQueue queue(SerialQueue::Mode::Pumped);
    queue.start();
    EXPECT_FALSE(queue.waitForTask(std::chrono::milliseconds(1)));
    std::thread ender([&] { queue.close(); });
    EXPECT_FALSE(queue.waitForTask(std::chrono::hours(1)));
    ender.join();
}

TEST(PumpedSerialQueue, CallsTheCallbackForEachPostedTask) {
    SerialQueue queue(SerialQueue::Mode::Pumped);
    int told = 0;
    queue.start();
    queue.setPostedCallback([&] { ++told; });
    queue.enqueue(task([] {}), false);
    queue.enqueueBlock(task([] {}), false);
    EXPECT_EQ(told, 1);
    queue.setPostedCallback(nullptr);
    queue.enqueue(task([] {}), false);
    EXPECT_EQ(told, 1);
}

TEST(PumpedSerialQueue, EndingOnAnotherThreadDropsQueuedTasksAndReleasesTheWaiter) {
    const LogRecorder log;
    SerialQueue queue(SerialQueue::Mode::Pumped);
    queue.start();
    bool ran = false;
    std::thread waiter([&] { queue.enqueueBlock(task([&] { ran = true; }, "awaited"), false); });
    ASSERT_TRUE(queue.waitForTask(std::chrono::seconds(60)));
    std::thread([&] { queue.end(); }).join();
    waiter.join();
    EXPECT_FALSE(ran);
    EXPECT_FALSE(queue.isOwner());
    EXPECT_THAT(log.getTexts(ZelLogLevel::Warning), ElementsAre(HasSubstr("awaited")));
}

TEST(PumpedSerialQueue, EndingOnTheOwnersThreadRunsQueuedTasks) {
    SerialQueue queue(SerialQueue::Mode::Pumped);
    bool ran = false;
    queue.start();
    queue.enqueue(task([&] { ran = true; }), false);
    queue.end();
    EXPECT_TRUE(ran);
}
