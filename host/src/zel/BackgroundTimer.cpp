#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>
#include <kyr/WaitLock.h>
#include <zel/BackgroundTimer.h>
#include <zel/TimerSource.h>
#include <zel/ZelLog.h>

#include <condition_variable>
#include <exception>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

namespace zel::common {

namespace {

ZelLogger& timerLogger = ZelLogger_getLogger("BackgroundTimer");

void callGuarded(BackgroundTimerCallback& callback) {
    try {
        callback.onTimer();
    } catch (const std::exception& failure) {
        ZelLog(timerLogger, ZelLogLevel::Error, ZEL_HERE, std::string("A timer's callback failed: ") + failure.what());
    } catch (...) {
        ZelLog(timerLogger, ZelLogLevel::Error, ZEL_HERE, "A timer's callback failed.");
    }
}

} // namespace

/// Outlives the timer while a callback runs. If an alarm fires after its timer was stopped or restarted, its number
/// differs from `armed` and it does nothing.
class BackgroundTimer::Impl : public std::enable_shared_from_this<BackgroundTimer::Impl> {
public:
    void start(std::weak_ptr<BackgroundTimerCallback> newCallback, std::int64_t seconds) {
        std::shared_ptr<TimerSource> former;
        const KyrCoreUtils::LockGuard lock(mutex);
        former = disarm();
        callback = std::move(newCallback);
        source = TimerSource::getInstance();
        const auto number = ++armed;
        alarm = source->set(seconds, [weak = weak_from_this(), number] {
            if (const auto self = weak.lock()) {
                self->runCallback(number);
            }
        });
    }

    void stop() {
        std::shared_ptr<TimerSource> former;
        KyrCoreUtils::WaitLock lock(mutex);
        former = disarm();
        if (runningOn == std::this_thread::get_id()) {
            return;
        }
        changed.wait(lock.get(), [this]() LUMORA_REQUIRES(mutex) { return runningOn == std::thread::id(); });
    }

private:
    /// The caller must release the returned source after the unlock: at the end of the process its destructor may wait
    /// for the timer's thread.
    std::shared_ptr<TimerSource> disarm() LUMORA_REQUIRES(mutex) {
        ++armed;
        callback.reset();
        auto used = std::exchange(source, nullptr);
        if (used) {
            used->cancel(alarm);
        }
        return used;
    }

    void runCallback(std::uint64_t number) {
        std::shared_ptr<BackgroundTimerCallback> called;
        std::shared_ptr<TimerSource> used;
        {
            const KyrCoreUtils::LockGuard lock(mutex);
            if (number != armed) {
                return;
            }
            called = callback.lock();
            used.swap(source);
            if (!called) {
                return;
            }
            runningOn = std::this_thread::get_id();
        }
        callGuarded(*called);
        // May destroy the callback and its timer, which then stops itself on this thread.
        called.reset();
        {
            const KyrCoreUtils::LockGuard lock(mutex);
            runningOn = std::thread::id();
        }
        changed.notify_all();
    }

    KyrCoreUtils::AnnotatedMutex<> mutex; ///< Never held during a callback.
    std::condition_variable changed;
    std::weak_ptr<BackgroundTimerCallback> callback LUMORA_GUARDED_BY(mutex);
    std::shared_ptr<TimerSource> source LUMORA_GUARDED_BY(mutex); ///< The source of the pending alarm.
    TimerSource::Alarm alarm LUMORA_GUARDED_BY(mutex) = 0;
    std::uint64_t armed LUMORA_GUARDED_BY(mutex) = 0;
    std::thread::id runningOn LUMORA_GUARDED_BY(mutex);
};

BackgroundTimer::BackgroundTimer() : impl(std::make_shared<Impl>()) {}

BackgroundTimer::~BackgroundTimer() {
    impl->stop();
}

void BackgroundTimer::start(std::weak_ptr<BackgroundTimerCallback> callback, const std::int64_t& seconds) {
    impl->start(std::move(callback), seconds);
}

void BackgroundTimer::stop() {
    impl->stop();
}

} // namespace zel::common
