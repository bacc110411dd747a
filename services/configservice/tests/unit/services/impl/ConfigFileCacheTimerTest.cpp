#include "services/impl/ConfigFileCacheTimer.h"

#include "services/impl/ConfigFileCacheTimerCallBack.h"

#include <LogRecorder.h>
#include <ManualClock.h>
#include <RecordingFactory.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

using testing::ElementsAre;
using testing::IsEmpty;
using ZelUnified::ConfigFileCacheTimer;

namespace {

constexpr const char* taskName = "ConfigFileCacheTimer::TimerImpl::callBackAndRemove";

class CountingCallBack final : public ZelUnified::ConfigFileCacheTimerCallBack {
public:
    explicit CountingCallBack(std::string file) : name(std::move(file)) {}
    void onTimerFired() override {
        ++fired;
        if (whenFired) {
            whenFired();
        }
    }
    std::string getFileName() override { return name; }

    int fired = 0;
    std::function<void()> whenFired;

private:
    std::string name;
};

std::shared_ptr<CountingCallBack> callBack(const std::string& file) {
    return std::make_shared<CountingCallBack>(file);
}

class ConfigFileCacheTimerTest : public testing::Test {
protected:
    /// A pending task owns the factory that owns the task.
    ~ConfigFileCacheTimerTest() override { factory->Destroy(); }

    void runTasks() { factory->backgroundDispatcher->runAll(); }
    std::vector<std::string> taskNames() const { return factory->backgroundDispatcher->getTaskNames(); }

    testing_host::ManualClock clock;
    std::shared_ptr<testing_host::RecordingFactory> factory = std::make_shared<testing_host::RecordingFactory>();
    std::unique_ptr<ConfigFileCacheTimer> timer = std::make_unique<ConfigFileCacheTimer>(factory);
    std::shared_ptr<CountingCallBack> first = callBack("file.dat");
};

/// Runs each task immediately on the timer's own thread.
class InlineDispatcher final : public ZelUnified::Processing::TaskDispatcher {
public:
    void enqueue(std::shared_ptr<zel::Task> task) override { task->run(); }
    void enqueue(std::function<void()> work, const std::string&) override { work(); }
};

class InlineFactory final : public testing_host::RecordingFactory {
public:
    std::shared_ptr<ZelUnified::Processing::TaskDispatcher> getBackgroundDispatcher() override { return dispatcher; }

private:
    std::shared_ptr<InlineDispatcher> dispatcher = std::make_shared<InlineDispatcher>();
};

} // namespace

TEST(ConfigFileCacheTimer, MayBeDestroyedOnTheTimersThread) {
    std::promise<void> scheduled;
    std::promise<void> fired;
    auto timer = std::make_unique<ConfigFileCacheTimer>(std::make_shared<InlineFactory>());
    const auto last = callBack("file.dat");
    last->whenFired = [&] {
        scheduled.get_future().wait();
        timer.reset();
        fired.set_value();
    };
    timer->scheduleTimer(last, 0);
    scheduled.set_value();
    EXPECT_EQ(fired.get_future().wait_for(std::chrono::minutes(1)), std::future_status::ready);
}

TEST(ConfigFileCacheTimer, SupportsConcurrentCallers) {
    ConfigFileCacheTimer timer(std::make_shared<InlineFactory>());
    const auto work = [&](const std::string& file) {
        for (int round = 0; round < 200; ++round) {
            timer.scheduleTimer(callBack(file), 0);
            timer.scheduleTimer(callBack("shared.dat"), 0);
            if (round % 10 == 0) {
                timer.clearTimers();
            }
            timer.getCount();
        }
    };
    std::thread first(work, "first.dat");
    std::thread second(work, "second.dat");
    first.join();
    second.join();
    timer.clearTimers();
    EXPECT_EQ(timer.getCount(), 0);
}

TEST_F(ConfigFileCacheTimerTest, CallsBackOnTheBackgroundDispatcherAfterTheDelay) {
    timer->scheduleTimer(first, 30000);
    EXPECT_EQ(timer->getCount(), 1);
    clock.advance(29);
    EXPECT_THAT(taskNames(), IsEmpty());
    clock.advance(1);
    EXPECT_THAT(taskNames(), ElementsAre(taskName));
    EXPECT_EQ(first->fired, 0);
    EXPECT_EQ(timer->getCount(), 1);
    runTasks();
    EXPECT_EQ(first->fired, 1);
    EXPECT_EQ(timer->getCount(), 0);
    EXPECT_EQ(clock.getPendingCount(), 0U);
}

TEST_F(ConfigFileCacheTimerTest, MergesRequestsForOneFileWithoutProlongingTheDelay) {
    const auto second = callBack("file.dat");
    timer->scheduleTimer(first, 30000);
    clock.advance(5);
    timer->scheduleTimer(second, 30000);
    EXPECT_EQ(timer->getCount(), 1);
    clock.advance(24);
    EXPECT_THAT(taskNames(), IsEmpty());
    clock.advance(1);
    EXPECT_THAT(taskNames(), ElementsAre(taskName));
    runTasks();
    clock.advance(60);
    runTasks();
    EXPECT_EQ(first->fired, 1);
    EXPECT_EQ(second->fired, 0);
}

TEST_F(ConfigFileCacheTimerTest, DistinguishesFilesByCase) {
    const auto second = callBack("FILE.dat");
    timer->scheduleTimer(first, 1000);
    timer->scheduleTimer(second, 1000);
    EXPECT_EQ(timer->getCount(), 2);
    clock.advance(1);
    runTasks();
    EXPECT_EQ(first->fired, 1);
    EXPECT_EQ(second->fired, 1);
}

TEST_F(ConfigFileCacheTimerTest, TruncatesTheDelayToWholeSeconds) {
    timer->scheduleTimer(first, 1999);
    clock.advance(0);
    EXPECT_THAT(taskNames(), IsEmpty());
    clock.advance(1);
    EXPECT_THAT(taskNames(), ElementsAre(taskName));
}

TEST_F(ConfigFileCacheTimerTest, FiresImmediatelyAfterTheCallIfTheDelayIsBelowOneSecond) {
    for (const int milliseconds : {999, 0, -5000}) {
        factory->backgroundDispatcher->clear();
        ConfigFileCacheTimer quick(factory);
        quick.scheduleTimer(first, milliseconds);
        EXPECT_THAT(taskNames(), IsEmpty());
        clock.advance(0);
        EXPECT_THAT(taskNames(), ElementsAre(taskName)) << milliseconds;
    }
}

TEST_F(ConfigFileCacheTimerTest, DropsRequestsUntilTheCallbackHasFinished) {
    const auto second = callBack("file.dat");
    first->whenFired = [&] {
        EXPECT_EQ(timer->getCount(), 1);
        timer->scheduleTimer(second, 0);
        EXPECT_EQ(timer->getCount(), 1);
    };
    timer->scheduleTimer(first, 0);
    clock.advance(0);
    timer->scheduleTimer(second, 0);
    runTasks();
    clock.advance(60);
    runTasks();
    EXPECT_EQ(second->fired, 0);
    timer->scheduleTimer(second, 1000);
    clock.advance(1);
    runTasks();
    EXPECT_EQ(second->fired, 1);
}

TEST_F(ConfigFileCacheTimerTest, HoldsNoLockDuringTheCallback) {
    first->whenFired = [&] {
        std::thread other([&] { timer->scheduleTimer(callBack("other.dat"), 1000); });
        other.join();
    };
    timer->scheduleTimer(first, 0);
    clock.advance(0);
    runTasks();
    EXPECT_EQ(timer->getCount(), 1);
}

TEST_F(ConfigFileCacheTimerTest, RemovesTheRequestOfACallbackThatThrows) {
    first->whenFired = [] { throw std::runtime_error("no luck"); };
    timer->scheduleTimer(first, 0);
    clock.advance(0);
    EXPECT_THROW(runTasks(), std::runtime_error);
    EXPECT_EQ(timer->getCount(), 0);
}

TEST_F(ConfigFileCacheTimerTest, ClearTimersRemovesPendingRequests) {
    timer->scheduleTimer(first, 30000);
    timer->clearTimers();
    EXPECT_EQ(timer->getCount(), 0);
    EXPECT_EQ(clock.getPendingCount(), 0U);
    clock.advance(60);
    runTasks();
    EXPECT_EQ(first->fired, 0);
}

TEST_F(ConfigFileCacheTimerTest, ClearTimersRemovesQueuedCallbacksButNotLaterRequests) {
    const auto second = callBack("file.dat");
    timer->scheduleTimer(first, 0);
    clock.advance(0);
    timer->clearTimers();
    timer->scheduleTimer(second, 1000);
    runTasks();
    EXPECT_EQ(first->fired, 0);
    EXPECT_EQ(timer->getCount(), 1);
    clock.advance(1);
    runTasks();
    EXPECT_EQ(second->fired, 1);
}

TEST_F(ConfigFileCacheTimerTest, ReleasesCallbacksThatCallItInTheirDestructor) {
    struct Reentrant final : ZelUnified::ConfigFileCacheTimerCallBack {
        explicit Reentrant(ConfigFileCacheTimer& owner) : timer(owner) {}
        ~Reentrant() override {
            std::thread other([this] { timer.getCount(); });
            other.join();
        }
        void onTimerFired() override {}
        std::string getFileName() override { return "reentrant"; }
        ConfigFileCacheTimer& timer;
    };
    timer->scheduleTimer(std::make_shared<Reentrant>(*timer), 30000);
    timer->clearTimers();
    EXPECT_EQ(timer->getCount(), 0);
}

TEST_F(ConfigFileCacheTimerTest, CallsNothingAfterItsDestruction) {
    const auto second = callBack("other.dat");
    timer->scheduleTimer(first, 0);
    clock.advance(0);
    timer->scheduleTimer(second, 1000);
    timer.reset();
    clock.advance(60);
    runTasks();
    EXPECT_EQ(first->fired, 0);
    EXPECT_EQ(second->fired, 0);
    EXPECT_EQ(first.use_count(), 1);
    EXPECT_EQ(second.use_count(), 1);
}

TEST_F(ConfigFileCacheTimerTest, IgnoresANullCallback) {
    timer->scheduleTimer(nullptr, 0);
    EXPECT_EQ(timer->getCount(), 0);
}

TEST_F(ConfigFileCacheTimerTest, DoesNothingWithoutADispatcher) {
    ConfigFileCacheTimer timerWithoutFactory(nullptr);
    timerWithoutFactory.scheduleTimer(first, 0);
    clock.advance(0);
    EXPECT_EQ(first->fired, 0);
}

TEST_F(ConfigFileCacheTimerTest, LogsItsStepsAtDebugLevel) {
    const testing_host::LogRecorder log(testing_host::LogRecorder::Debug::On);
    timer->scheduleTimer(first, 1500);
    timer->scheduleTimer(callBack("file.dat"), 1500);
    clock.advance(1);
    runTasks();
    timer->clearTimers();
    timer.reset();
    EXPECT_THAT(log.getTexts("ConfigFileCacheTimer"),
                ElementsAre("Attempting to schedule timer for file: file.dat, lasting: 1500ms",
                            "Timer added. Timers count: 1",
                            "Attempting to schedule timer for file: file.dat, lasting: 1500ms",
                            "Timer already exists, do nothing", "Firing callback for file: file.dat",
                            "Removing timer. Timers count: 1", "Timer removed. Timers count: 0",
                            "TimerImpl::~TimerImpl()", "Removing all timers, which should stop them all",
                            "ConfigFileCacheTimer Destructor", "Removing all timers, which should stop them all"));
    EXPECT_EQ(log.getTexts(ZelLogLevel::Debug).size(), log.getRecords().size());
}

TEST_F(ConfigFileCacheTimerTest, LogsNothingWithoutDebugLevel) {
    const testing_host::LogRecorder log;
    timer->scheduleTimer(first, 0);
    clock.advance(0);
    runTasks();
    timer.reset();
    EXPECT_THAT(log.getRecords(), IsEmpty());
}
