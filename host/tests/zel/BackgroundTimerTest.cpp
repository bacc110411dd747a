#include <zel/BackgroundTimer.h>

#include <LogRecorder.h>
#include <ManualClock.h>
#include <Signal.h>

#include <chrono>
#include <functional>
#include <limits>
#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>

using testing::ElementsAre;
using testing::HasSubstr;
using testing_host::LogRecorder;
using testing_host::ManualClock;
using testing_host::Signal;
using zel::common::BackgroundTimer;
using zel::common::BackgroundTimerCallback;

namespace {

class Callback final : public BackgroundTimerCallback {
public:
    explicit Callback(std::function<void()> function) : work(std::move(function)) {}
    void onTimer() override { work(); }

private:
    std::function<void()> work;
};

std::shared_ptr<Callback> callback(std::function<void()> work) {
    return std::make_shared<Callback>(std::move(work));
}

/// Owns its timer, like the usual caller.
class Owner final : public BackgroundTimerCallback {
public:
    explicit Owner(Signal& signal) : died(signal) {}
    ~Owner() override {
        timer.stop();
        died.set();
    }
    void onTimer() override { whenFired(); }

    BackgroundTimer timer;
    std::function<void()> whenFired;

private:
    Signal& died;
};

} // namespace

TEST(BackgroundTimer, FiresOnceAfterItsTime) {
    ManualClock clock;
    BackgroundTimer timer;
    int fired = 0;
    const auto counted = callback([&] { ++fired; });
    timer.start(counted, 30);
    clock.advance(29);
    EXPECT_EQ(fired, 0);
    clock.advance(1);
    EXPECT_EQ(fired, 1);
    clock.advance(1000);
    EXPECT_EQ(fired, 1);
}

TEST(BackgroundTimer, StartReplacesThePendingCallback) {
    ManualClock clock;
    BackgroundTimer timer;
    int first = 0;
    int second = 0;
    const auto replaced = callback([&] { ++first; });
    const auto kept = callback([&] { ++second; });
    timer.start(replaced, 5);
    timer.start(kept, 10);
    EXPECT_EQ(clock.getPendingCount(), 1U);
    clock.advance(9);
    EXPECT_EQ(second, 0);
    clock.advance(1);
    EXPECT_EQ(first, 0);
    EXPECT_EQ(second, 1);
}

TEST(BackgroundTimer, DoesNotFireAfterAStop) {
    ManualClock clock;
    BackgroundTimer timer;
    int fired = 0;
    const auto counted = callback([&] { ++fired; });
    timer.start(counted, 5);
    timer.stop();
    EXPECT_EQ(clock.getPendingCount(), 0U);
    clock.advance(10);
    EXPECT_EQ(fired, 0);
}

TEST(BackgroundTimer, StoppingAnIdleTimerReturns) {
    BackgroundTimer timer;
    timer.stop();
    timer.stop();
}

TEST(BackgroundTimer, DestroyingTheTimerStopsIt) {
    ManualClock clock;
    int fired = 0;
    const auto counted = callback([&] { ++fired; });
    {
        BackgroundTimer timer;
        timer.start(counted, 5);
    }
    clock.advance(10);
    EXPECT_EQ(fired, 0);
}

TEST(BackgroundTimer, ADestroyedCallbackIsNotCalled) {
    ManualClock clock;
    BackgroundTimer timer;
    int fired = 0;
    auto counted = callback([&] { ++fired; });
    timer.start(counted, 5);
    counted.reset();
    clock.advance(10);
    EXPECT_EQ(fired, 0);
    timer.stop();
}

TEST(BackgroundTimer, ACallbackMayRestartItsTimer) {
    ManualClock clock;
    BackgroundTimer timer;
    int fired = 0;
    std::shared_ptr<Callback> again;
    again = callback([&] {
        if (++fired < 3) {
            timer.start(again, 10);
        }
    });
    timer.start(again, 10);
    clock.advance(10);
    EXPECT_EQ(fired, 1);
    clock.advance(100);
    EXPECT_EQ(fired, 3);
}

TEST(BackgroundTimer, ACallbackThatThrowsIsLoggedAndTheTimerStaysUsable) {
    const LogRecorder log;
    ManualClock clock;
    BackgroundTimer timer;
    const auto broken = callback([] { throw std::runtime_error("broken"); });
    timer.start(broken, 1);
    clock.advance(1);
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), ElementsAre(HasSubstr("broken")));
    int fired = 0;
    const auto counted = callback([&] { ++fired; });
    timer.start(counted, 1);
    clock.advance(1);
    EXPECT_EQ(fired, 1);
}

TEST(BackgroundTimer, ZeroOrNegativeSecondsFireImmediatelyOnTheTimersThread) {
    for (const std::int64_t seconds : {std::int64_t{0}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::min()}) {
        BackgroundTimer timer;
        Signal fired;
        std::thread::id firedOn;
        const auto told = callback([&] {
            firedOn = std::this_thread::get_id();
            fired.set();
        });
        timer.start(told, seconds);
        ASSERT_TRUE(fired.wait());
        timer.stop();
        EXPECT_NE(firedOn, std::this_thread::get_id());
    }
}

TEST(BackgroundTimer, AStopWaitsForTheRunningCallback) {
    BackgroundTimer timer;
    Signal entered;
    Signal go;
    Signal stopped;
    bool finished = false;
    const auto slow = callback([&] {
        entered.set();
        EXPECT_TRUE(go.wait());
        finished = true;
    });
    timer.start(slow, 0);
    ASSERT_TRUE(entered.wait());
    std::thread stopper([&] {
        timer.stop();
        stopped.set();
    });
    EXPECT_FALSE(stopped.waitFor(std::chrono::milliseconds(20)));
    go.set();
    stopper.join();
    EXPECT_TRUE(finished);
}

TEST(BackgroundTimer, ACallbackMayStopItsTimer) {
    BackgroundTimer timer;
    Signal done;
    const auto stopping = callback([&] {
        timer.stop();
        done.set();
    });
    timer.start(stopping, 0);
    EXPECT_TRUE(done.wait());
}

TEST(BackgroundTimer, TheOwnerMayBeDestroyedOnTheTimersThread) {
    Signal entered;
    Signal released;
    Signal died;
    auto owner = std::make_shared<Owner>(died);
    owner->whenFired = [&] {
        entered.set();
        EXPECT_TRUE(released.wait());
    };
    owner->timer.start(owner, 0);
    ASSERT_TRUE(entered.wait());
    owner.reset();
    EXPECT_FALSE(died.isSet());
    released.set();
    EXPECT_TRUE(died.wait());
}
