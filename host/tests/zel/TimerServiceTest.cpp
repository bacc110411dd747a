#include "zel/TimerService.h"

#include <JumpingClock.h>
#include <Signal.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <limits>
#include <thread>

namespace {

using testing_host::JumpingClock;
using testing_host::Signal;
using zel::common::TimerService;

TEST(TimerService, AllAlarmsShareOneThread) {
    std::thread::id firstThread;
    std::thread::id secondThread;
    Signal firstFired;
    Signal secondFired;
    TimerService service;
    service.set(0, [&] {
        firstThread = std::this_thread::get_id();
        firstFired.set();
    });
    service.set(0, [&] {
        secondThread = std::this_thread::get_id();
        secondFired.set();
    });
    ASSERT_TRUE(firstFired.wait());
    ASSERT_TRUE(secondFired.wait());
    EXPECT_EQ(firstThread, secondThread);
    EXPECT_NE(firstThread, std::this_thread::get_id());
}

TEST(TimerService, TheLongestTimeNeverFires) {
    Signal promptFired;
    int fired = 0;
    TimerService service;
    const auto endless = service.set(std::numeric_limits<std::int64_t>::max(), [&] { ++fired; });
    service.set(0, [&] { promptFired.set(); });
    ASSERT_TRUE(promptFired.wait());
    service.cancel(endless);
    EXPECT_EQ(fired, 0);
}

TEST(TimerService, DoesNotFireACancelledAlarm) {
    Signal lastFired;
    int fired = 0;
    TimerService service;
    const auto cancelled = service.set(1, [&] { ++fired; });
    service.set(1, [&] { lastFired.set(); });
    service.cancel(cancelled);
    service.cancel(cancelled);
    ASSERT_TRUE(lastFired.wait());
    EXPECT_EQ(fired, 0);
}

TEST(TimerService, DestroyingItCancelsItsAlarms) {
    int fired = 0;
    {
        TimerService().set(1000, [&] { ++fired; });
    }
    EXPECT_EQ(fired, 0);
}

TEST(TimerService, FiresOnTimeWhenTheClockIsSetBack) {
    JumpingClock clock;
    Signal fired;
    TimerService service;
    service.set(1, [&] { fired.set(); });
    clock.jump(-std::chrono::hours(24));
    EXPECT_TRUE(fired.wait());
}

TEST(TimerService, DoesNotFireEarlyWhenTheClockIsSetForward) {
    JumpingClock clock;
    Signal firedLate;
    Signal firedSoon;
    TimerService service;
    service.set(1000, [&] { firedLate.set(); });
    clock.jump(std::chrono::hours(24));
    service.set(1, [&] { firedSoon.set(); });
    EXPECT_TRUE(firedSoon.wait());
    EXPECT_FALSE(firedLate.isSet());
}

} // namespace
