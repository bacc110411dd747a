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
    void ringAfter(std::int64_t seconds, const std::string& name) {
        TimerSource::getInstance()->set(seconds, [this, name] { rung.push_back(name); });
    }

    ManualClock clock;
    std::vector<std::string> rung;
};

} // namespace

TEST_F(ManualClockTest, FiresAlarmsByTimeAndThenInTheOrderTheyWereSet) {
    ringAfter(20, "late");
    ringAfter(10, "first");
    ringAfter(10, "second");
    clock.advance(30);
    EXPECT_THAT(rung, ElementsAre("first", "second", "late"));
}

TEST_F(ManualClockTest, FiresAnAlarmOnceAtItsExactSecond) {
    ringAfter(10, "a");
    clock.advance(9);
    EXPECT_THAT(rung, IsEmpty());
    clock.advance(1);
    clock.advance(100);
    EXPECT_THAT(rung, ElementsAre("a"));
}

TEST_F(ManualClockTest, AnAlarmOfZeroSecondsOrLessFiresAtTheNextAdvance) {
    ringAfter(0, "zero");
    ringAfter(-5, "negative");
    EXPECT_THAT(rung, IsEmpty());
    EXPECT_EQ(clock.getPendingCount(), 2U);
    clock.advance(0);
    EXPECT_THAT(rung, ElementsAre("zero", "negative"));
    EXPECT_EQ(clock.getPendingCount(), 0U);
}

TEST_F(ManualClockTest, AnAlarmThatAnAlarmSetsIsRelativeToTheTimeOfTheFirst) {
    TimerSource::getInstance()->set(10, [this] { ringAfter(10, "chained"); });
    clock.advance(19);
    EXPECT_THAT(rung, IsEmpty());
    clock.advance(1);
    EXPECT_THAT(rung, ElementsAre("chained"));
}

TEST_F(ManualClockTest, DoesNotFireACancelledAlarm) {
    const auto alarm = TimerSource::getInstance()->set(10, [this] { rung.push_back("cancelled"); });
    ringAfter(10, "kept");
    TimerSource::getInstance()->cancel(alarm);
    TimerSource::getInstance()->cancel(alarm + 100);
    clock.advance(10);
    EXPECT_THAT(rung, ElementsAre("kept"));
}

TEST_F(ManualClockTest, AnAlarmAtTheLongestTimeNeverFires) {
    clock.advance(5);
    ringAfter(std::numeric_limits<std::int64_t>::max(), "never");
    clock.advance(1000000);
    EXPECT_THAT(rung, IsEmpty());
}

TEST(ManualClock, RestoresTheFormerTimerSourceWhenItIsDestroyed) {
    const auto service = TimerSource::getInstance();
    {
        const ManualClock clock;
        EXPECT_NE(TimerSource::getInstance(), service);
    }
    EXPECT_EQ(TimerSource::getInstance(), service);
}
