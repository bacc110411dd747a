#include "TimerService.h"

#include <kyr/AnnotatedMutex.h>
#include <kyr/LockGuard.h>

#include <algorithm>
#include <asio/executor_work_guard.hpp>
#include <asio/io_context.hpp>
#include <asio/post.hpp>
#include <asio/steady_timer.hpp>
#include <atomic>
#include <chrono>
#include <map>
#include <system_error>
#include <utility>

namespace zel::common {

namespace {

/// Long enough to count as never, short enough to be added to any time point of the clock.
constexpr std::int64_t longestWait = std::int64_t{100} * 365 * 24 * 60 * 60;

/// The source that replaces the timer thread; null for none.
struct Replacement {
    KyrCoreUtils::AnnotatedMutex<> mutex;
    std::shared_ptr<TimerSource> source LUMORA_GUARDED_BY(mutex);
};

Replacement& replacement() {
    static Replacement current;
    return current;
}

} // namespace

/// The pending alarms; accessed only on the timer's thread.
class TimerService::Core {
public:
    Core() : keepRunning(asio::make_work_guard(context)) {}

    void runThread() { context.run(); }
    void stop() { context.stop(); }

    Alarm set(std::chrono::steady_clock::time_point moment, std::function<void()> ring) {
        const Alarm alarm = ++lastAlarm;
        asio::post(context, [this, alarm, moment, ring = std::move(ring)]() mutable {
            asio::steady_timer& timer = pending.try_emplace(alarm, context, moment).first->second;
            timer.async_wait([this, alarm, ring = std::move(ring)](const std::error_code& cancelled) {
                pending.erase(alarm);
                if (!cancelled) {
                    ring();
                }
            });
        });
        return alarm;
    }

    void cancel(Alarm alarm) {
        asio::post(context, [this, alarm] { pending.erase(alarm); });
    }

private:
    asio::io_context context{1};
    asio::executor_work_guard<asio::io_context::executor_type> keepRunning;
    std::atomic<Alarm> lastAlarm = 0;
    std::map<Alarm, asio::steady_timer> pending;
};

TimerService::TimerService() : core(std::make_shared<Core>()) {}

TimerService::~TimerService() {
    core->stop();
    if (!thread.joinable()) {
        return;
    }
    if (thread.get_id() == std::this_thread::get_id()) {
        thread.detach();
        return;
    }
    thread.join();
}

TimerSource::Alarm TimerService::set(std::int64_t seconds, std::function<void()> ring) {
    const std::chrono::seconds wait(std::clamp<std::int64_t>(seconds, 0, longestWait));
    const auto alarm = core->set(std::chrono::steady_clock::now() + wait, std::move(ring));
    requireThread();
    return alarm;
}

void TimerService::cancel(Alarm alarm) {
    core->cancel(alarm);
}

void TimerService::requireThread() {
    const KyrCoreUtils::LockGuard lock(threadMutex);
    if (!thread.joinable()) {
        thread = std::thread([running = core] { running->runThread(); });
    }
}

std::shared_ptr<TimerSource> TimerSource::getInstance() {
    {
        auto& current = replacement();
        const KyrCoreUtils::LockGuard lock(current.mutex);
        if (current.source) {
            return current.source;
        }
    }
    static const std::shared_ptr<TimerSource> service = std::make_shared<TimerService>();
    return service;
}

void TimerSource::overrideInstance(std::shared_ptr<TimerSource> source) {
    auto& current = replacement();
    const KyrCoreUtils::LockGuard lock(current.mutex);
    current.source.swap(source);
}

} // namespace zel::common
