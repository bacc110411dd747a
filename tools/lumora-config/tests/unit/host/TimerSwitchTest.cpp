#include "host/TimerSwitch.h"

#include <ManualClock.h>
#include <gtest/gtest.h>

#include <memory>

namespace lumora_config {

namespace {

class TimerSwitchTest : public testing::Test {
protected:
    void set(std::int64_t seconds) {
        alarm = timers->set(seconds, [this] { ++fired; });
    }

    testing_host::ManualClock clock;
    const std::shared_ptr<TimerSwitch> timers = std::make_shared<TimerSwitch>();
    TimerSwitch::Alarm alarm = 0;
    int fired = 0;
};

TEST_F(TimerSwitchTest, FiresAtItsTime) {
    set(30);
    clock.advance(29);
    EXPECT_EQ(fired, 0);
    clock.advance(1);
    EXPECT_EQ(fired, 1);
}

TEST_F(TimerSwitchTest, FiresAllPendingAlarmsOnce) {
    set(30);
    set(60);
    EXPECT_TRUE(timers->fireAll());
    EXPECT_EQ(fired, 2);
    EXPECT_FALSE(timers->fireAll());
    clock.advance(100);
    EXPECT_EQ(fired, 2);
    EXPECT_EQ(clock.getPendingCount(), 0U);
}

TEST_F(TimerSwitchTest, DoesNotFireACancelledAlarm) {
    set(30);
    timers->cancel(alarm);
    timers->cancel(alarm);
    timers->fireAll();
    clock.advance(30);
    EXPECT_EQ(fired, 0);
    EXPECT_EQ(clock.getPendingCount(), 0U);
}

TEST_F(TimerSwitchTest, DoesNotFireAnAlarmTwice) {
    set(30);
    clock.advance(30);
    timers->fireAll();
    EXPECT_EQ(fired, 1);
}

TEST_F(TimerSwitchTest, AllowsAnAlarmToSetAnother) {
    timers->set(30, [this] { set(30); });
    timers->fireAll();
    EXPECT_EQ(fired, 0);
    clock.advance(30);
    EXPECT_EQ(fired, 1);
}

} // namespace

} // namespace lumora_config
