#include "host/TimerSwitch.h"

#include <ManualClock.h>
#include <gtest/gtest.h>

#include <memory>

namespace lumora_config {

namespace {

class TimerSwitchTest : public testing::Test {
protected:
    void set(std::int64_t seconds) {
        alarm = timers->set(seconds, [this] { ++rung; });
    }

    testing_host::ManualClock clock;
    const std::shared_ptr<TimerSwitch> timers = std::make_shared<TimerSwitch>();
    TimerSwitch::Alarm alarm = 0;
    int rung = 0;
};

TEST_F(TimerSwitchTest, RingsWhenItsTimeHasCome) {
    set(30);
    clock.advance(29);
    EXPECT_EQ(rung, 0);
    clock.advance(1);
    EXPECT_EQ(rung, 1);
}

TEST_F(TimerSwitchTest, RingsAllThatWaitAtOnceAndNeverAgain) {
    set(30);
    set(60);
    timers->ringAll();
    EXPECT_EQ(rung, 2);
    timers->ringAll();
    clock.advance(100);
    EXPECT_EQ(rung, 2);
    EXPECT_EQ(clock.getPendingCount(), 0U);
}

TEST_F(TimerSwitchTest, DoesNotRingWhatWasCancelled) {
    set(30);
    timers->cancel(alarm);
    timers->cancel(alarm);
    timers->ringAll();
    clock.advance(30);
    EXPECT_EQ(rung, 0);
    EXPECT_EQ(clock.getPendingCount(), 0U);
}

TEST_F(TimerSwitchTest, DoesNotRingTwiceWhatHasRung) {
    set(30);
    clock.advance(30);
    timers->ringAll();
    EXPECT_EQ(rung, 1);
}

TEST_F(TimerSwitchTest, LetsAnAlarmSetAnother) {
    timers->set(30, [this] { set(30); });
    timers->ringAll();
    EXPECT_EQ(rung, 0);
    clock.advance(30);
    EXPECT_EQ(rung, 1);
}

} // namespace

} // namespace lumora_config
