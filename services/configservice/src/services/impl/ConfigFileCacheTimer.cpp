#include "ConfigFileCacheTimer.h"

#include "ConfigFileCacheTimerCallBack.h"

#include <unified/UnifiedFactory.h>
#include <zel/BackgroundTimer.h>
#include <zel/ZelLog.h>

#include <secure/Mutex.h>

#include <atomic>
#include <cstdint>
#include <set>
#include <string>
#include <utility>

namespace ZelUnified {

namespace {

ZelLogger& timerLogger = ZelLogger_getLogger("ConfigFileCacheTimer");

} // namespace

/// Owns the pending timers.
class ConfigFileCacheTimer::Impl final : public std::enable_shared_from_this<Impl> {
public:
    explicit Impl(std::shared_ptr<UnifiedFactory> unifiedFactory) : factory(std::move(unifiedFactory)) {}
    ~Impl();

    void scheduleTimer(std::shared_ptr<ConfigFileCacheTimerCallBack> callback, int milliseconds);
    void clearTimers();
    int getCount();
    void removeTimerImpl(const std::shared_ptr<TimerImpl>& timer);

private:
    bool hasTimerFor(const std::string& fileName) const LUMORA_REQUIRES(timersMutex);

    zel::Mutex timersMutex;
    std::set<std::shared_ptr<TimerImpl>> timers LUMORA_GUARDED_BY(timersMutex);
    std::shared_ptr<UnifiedFactory> factory;
};

/// One pending write. Only the set and the queued task own it. The last owner may destroy it on the timer's own thread.
class ConfigFileCacheTimer::TimerImpl final : public zel::common::BackgroundTimerCallback,
                                              public std::enable_shared_from_this<TimerImpl> {
public:
    TimerImpl(std::shared_ptr<UnifiedFactory> unifiedFactory, std::weak_ptr<Impl> owner,
              std::shared_ptr<ConfigFileCacheTimerCallBack> fired)
        : callback(std::move(fired)), impl(std::move(owner)), factory(std::move(unifiedFactory)) {}
    ~TimerImpl() override;

    /// Queues the callback and returns immediately. Acquires no lock that is held during stop().
    void onTimer() override;

    std::string getFileName() const { return callback->getFileName(); }
    void start(const std::int64_t& seconds) { timer.start(weak_from_this(), seconds); }
    void stop() { timer.stop(); }
    void forbidCallback() { stopped = true; }

private:
    void callBackAndRemove();

    zel::Mutex timerMutex; ///< Held during onTimer(). The members below do not change, or are thread-safe.
    std::shared_ptr<ConfigFileCacheTimerCallBack> callback;
    std::weak_ptr<Impl> impl;
    std::shared_ptr<UnifiedFactory> factory;
    std::atomic<bool> stopped = false;
    zel::common::BackgroundTimer timer;
};

ConfigFileCacheTimer::ConfigFileCacheTimer(std::shared_ptr<UnifiedFactory> unifiedFactory)
    : impl(std::make_shared<Impl>(std::move(unifiedFactory))) {}

ConfigFileCacheTimer::~ConfigFileCacheTimer() = default;

void ConfigFileCacheTimer::scheduleTimer(std::shared_ptr<ConfigFileCacheTimerCallBack> callback, int milliseconds) {
    impl->scheduleTimer(std::move(callback), milliseconds);
}

void ConfigFileCacheTimer::clearTimers() {
    impl->clearTimers();
}

int ConfigFileCacheTimer::getCount() {
    return impl->getCount();
}

ConfigFileCacheTimer::Impl::~Impl() {
    if (ZelLog_isDebugEnabled(timerLogger)) {
        ZelLog(timerLogger, ZelLogLevel::Debug, ZEL_HERE, "ConfigFileCacheTimer Destructor");
    }
    clearTimers();
}

void ConfigFileCacheTimer::Impl::scheduleTimer(std::shared_ptr<ConfigFileCacheTimerCallBack> callback,
                                               int milliseconds) {
    if (!callback) {
        return;
    }
    const zel::Mutex::ScopedLock lock(timersMutex);
    const std::string fileName = callback->getFileName();
    if (ZelLog_isDebugEnabled(timerLogger)) {
        ZelLog(timerLogger, ZelLogLevel::Debug, ZEL_HERE,
               "Attempting to schedule timer for file: " + fileName + ", lasting: " + std::to_string(milliseconds) +
                   "ms");
    }
    if (hasTimerFor(fileName)) {
        if (ZelLog_isDebugEnabled(timerLogger)) {
            ZelLog(timerLogger, ZelLogLevel::Debug, ZEL_HERE, "Timer already exists, do nothing");
        }
        return;
    }
    const auto timer = std::make_shared<TimerImpl>(factory, weak_from_this(), std::move(callback));
    timers.insert(timer);
    const std::int64_t seconds = milliseconds / 1000;
    timer->start(seconds);
    if (ZelLog_isDebugEnabled(timerLogger)) {
        ZelLog(timerLogger, ZelLogLevel::Debug, ZEL_HERE,
               "Timer added. Timers count: " + std::to_string(timers.size()));
    }
}

bool ConfigFileCacheTimer::Impl::hasTimerFor(const std::string& fileName) const {
    for (const auto& timer : timers) {
        if (timer->getFileName() == fileName) {
            return true;
        }
    }
    return false;
}

void ConfigFileCacheTimer::Impl::clearTimers() {
    std::set<std::shared_ptr<TimerImpl>> released;
    const zel::Mutex::ScopedLock lock(timersMutex);
    if (ZelLog_isDebugEnabled(timerLogger)) {
        ZelLog(timerLogger, ZelLogLevel::Debug, ZEL_HERE, "Removing all timers, which should stop them all");
    }
    for (const auto& timer : timers) {
        timer->forbidCallback();
    }
    // Destroyed after the unlock: a callback's destructor is other code's.
    released.swap(timers);
}

int ConfigFileCacheTimer::Impl::getCount() {
    const zel::Mutex::ScopedLock lock(timersMutex);
    return static_cast<int>(timers.size());
}

void ConfigFileCacheTimer::Impl::removeTimerImpl(const std::shared_ptr<TimerImpl>& timer) {
    const bool debug = ZelLog_isDebugEnabled(timerLogger);
    if (debug) {
        ZelLog(timerLogger, ZelLogLevel::Debug, ZEL_HERE,
               "Removing timer. Timers count: " + std::to_string(getCount()));
    }
    const zel::Mutex::ScopedLock lock(timersMutex);
    timers.erase(timer);
    timer->stop();
    if (debug) {
        ZelLog(timerLogger, ZelLogLevel::Debug, ZEL_HERE,
               "Timer removed. Timers count: " + std::to_string(timers.size()));
    }
}

ConfigFileCacheTimer::TimerImpl::~TimerImpl() {
    if (ZelLog_isDebugEnabled(timerLogger)) {
        ZelLog(timerLogger, ZelLogLevel::Debug, ZEL_HERE, "TimerImpl::~TimerImpl()");
    }
    timer.stop();
}

void ConfigFileCacheTimer::TimerImpl::onTimer() {
    const zel::Mutex::ScopedLock lock(timerMutex);
    if (!callback) {
        return;
    }
    if (ZelLog_isDebugEnabled(timerLogger)) {
        ZelLog(timerLogger, ZelLogLevel::Debug, ZEL_HERE, "Firing callback for file: " + callback->getFileName());
    }
    if (const auto dispatcher = factory ? factory->getBackgroundDispatcher() : nullptr) {
        dispatcher->enqueue([self = shared_from_this()] { self->callBackAndRemove(); },
                            "ConfigFileCacheTimer::TimerImpl::callBackAndRemove");
    }
}

void ConfigFileCacheTimer::TimerImpl::callBackAndRemove() {
    // Runs even if the callback throws; otherwise writes of this file could never be scheduled again.
    struct Removal {
        std::shared_ptr<TimerImpl> timer;
        ~Removal() {
            if (const auto owner = timer->impl.lock()) {
                owner->removeTimerImpl(timer);
            }
        }
    };
    const Removal removal{shared_from_this()};
    if (!stopped) {
        callback->onTimerFired();
    }
}

} // namespace ZelUnified
