#include <zel/TimerSource.h>

#include <CountedTimers.h>
#include <Signal.h>

#include <memory>

using testing_host::CountedTimers;
using testing_host::Signal;
using zel::common::TimerSource;

TEST(CountedTimersTest, CountsPendingTimersAndNotCancelledOnes) {
    const CountedTimers timers;
    const auto source = TimerSource::getInstance();
    const auto alarm = source->set(1000, [] { FAIL() << "rang"; });
    source->set(1000, [] { FAIL() << "rang"; });
    EXPECT_EQ(timers.getPendingCount(), 2U);
    source->cancel(alarm);
    source->cancel(alarm);
    EXPECT_EQ(timers.getPendingCount(), 1U);
}

TEST(CountedTimersTest, WithoutAWaitATimerFiresImmediatelyAndIsNoLongerCounted) {
    CountedTimers timers;
    timers.setWait(CountedTimers::Wait::None);
    const auto counted = std::make_shared<std::size_t>(99);
    TimerSource::getInstance()->set(1000, [&timers, counted] { *counted = timers.getPendingCount(); });
    ASSERT_TRUE(timers.settle());
    EXPECT_EQ(*counted, 0U);
}
