#include <zel/TimerSource.h>

#include <ManualClock.h>

#include <limits>
#include <memory>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using testing_host::ManualClock;
using zel::common::TimerSource;

namespace {

class ManualClockTest : public testing::Test {
protected:
    void setAlarm(std::int64_t seconds, const std::string& name) {
        TimerSource::getInstance()->set(seconds, [this, name] { fired.push_back(name); });
    }

    ManualClock clock;
    std::vector<std::string> fired;
};

} // namespace

TEST_F(ManualClockTest, FiresAlarmsByTimeAndThenInTheOrderTheyWereSet) {
    setAlarm(20, "late");
    setAlarm(10, "first");
    setAlarm(10, "second");
    clock.advance(30);
    EXPECT_THAT(fired, ElementsAre("first", "second", "late"));
}

TEST_F(ManualClockTest, FiresAnAlarmOnceAtItsExactSecond) {
    setAlarm(10, "a");
    clock.advance(9);
    EXPECT_THAT(fired, IsEmpty());
    clock.advance(1);
    clock.advance(100);
    EXPECT_THAT(fired, ElementsAre("a"));
}

TEST_F(ManualClockTest, AnAlarmOfZeroSecondsOrLessFiresAtTheNextAdvance) {
    setAlarm(0, "zero");
    setAlarm(-5, "negative");
    EXPECT_THAT(fired, IsEmpty());
    EXPECT_EQ(clock.getPendingCount(), 2U);
    clock.advance(0);
    EXPECT_THAT(fired, ElementsAre("zero", "negative"));
    EXPECT_EQ(clock.getPendingCount(), 0U);
}

TEST_F(ManualClockTest, AnAlarmThatAnAlarmSetsIsRelativeToTheTimeOfTheFirst) {
    TimerSource::getInstance()->set(10, [this] { setAlarm(10, "chained"); });
    clock.advance(19);
    EXPECT_THAT(fired, IsEmpty());
    clock.advance(1);
    EXPECT_THAT(fired, ElementsAre("chained"));
}

TEST_F(ManualClockTest, DoesNotFireACancelledAlarm) {
    const auto alarm = TimerSource::getInstance()->set(10, [this] { fired.push_back("cancelled"); });
    setAlarm(10, "kept");
    TimerSource::getInstance()->cancel(alarm);
    TimerSource::getInstance()->cancel(alarm + 100);
    clock.advance(10);
    EXPECT_THAT(fired, ElementsAre("kept"));
}

TEST_F(ManualClockTest, AnAlarmAtTheLongestTimeNeverFires) {
    clock.advance(5);
    setAlarm(std::numeric_limits<std::int64_t>::max(), "never");
    clock.advance(1000000);
    EXPECT_THAT(fired, IsEmpty());
}

TEST(ManualClock, RestoresTheFormerTimerSourceWhenItIsDestroyed) {
    const auto service = TimerSource::getInstance();
    {
        const ManualClock clock;
        EXPECT_NE(TimerSource::getInstance(), service);
    }
    EXPECT_EQ(TimerSource::getInstance(), service);
}
