#include "secure/Condition.h"

#include <gtest/gtest.h>
#include <secure/Mutex.h>

#include <future>
#include <vector>

namespace {

using zel::Condition;
using zel::Mutex;

struct ConditionTest : testing::Test {
    Mutex mutex;
    Condition condition;
    Condition arrived;
    int waiting = 0;
    int tickets = 0;

    /// Starts a thread that waits for a ticket and removes it.
    std::future<void> startWaiter() {
        return std::async(std::launch::async, [this] {
            const Mutex::ScopedLock lock(mutex);
            ++waiting;
            arrived.broadcast();
            while (tickets == 0) {
                condition.wait(mutex);
            }
            --tickets;
        });
    }

    std::vector<std::future<void>> startWaiters(int count) {
        std::vector<std::future<void>> waiters;
        for (int i = 0; i < count; ++i) {
            waiters.push_back(startWaiter());
        }
        const Mutex::ScopedLock lock(mutex);
        while (waiting < count) {
            arrived.wait(mutex);
        }
        return waiters;
    }

    void issue(int count) {
        const Mutex::ScopedLock lock(mutex);
        tickets += count;
    }
};

TEST_F(ConditionTest, WaitingReleasesTheMutexAndAcquiresItAgain) {
    auto waiters = startWaiters(1);
    issue(1);
    condition.signal();
    waiters.front().get();
    EXPECT_EQ(tickets, 0);
}

TEST_F(ConditionTest, ASignalReleasesOneWaiter) {
    auto waiters = startWaiters(3);
    for (int i = 0; i < 3; ++i) {
        issue(1);
        condition.signal();
    }
    for (auto& waiter : waiters) {
        waiter.get();
    }
    EXPECT_EQ(tickets, 0);
}

TEST_F(ConditionTest, ABroadcastReleasesAllWaiters) {
    auto waiters = startWaiters(4);
    issue(4);
    condition.broadcast();
    for (auto& waiter : waiters) {
        waiter.get();
    }
    EXPECT_EQ(tickets, 0);
}

TEST_F(ConditionTest, ASignalDoesNotReleaseLaterWaiters) {
    condition.signal();
    condition.broadcast();
    auto waiters = startWaiters(1);
    issue(1);
    condition.signal();
    waiters.front().get();
    EXPECT_EQ(tickets, 0);
}

} // namespace
