#include "TimerSwitch.h"

#include <kyr/LockGuard.h>

#include <utility>

namespace lumora_config {

TimerSwitch::Alarm TimerSwitch::set(std::int64_t seconds, std::function<void()> ring) {
    const KyrCoreUtils::LockGuard lock(mutex);
    const Alarm alarm = ++last;
    PendingAlarm& added = pending[alarm];
    added.action = std::move(ring);
    added.clockAlarm = clock->set(seconds, [weak = weak_from_this(), alarm] {
        if (const auto self = weak.lock()) {
            self->fire(alarm);
        }
    });
    return alarm;
}

void TimerSwitch::cancel(Alarm alarm) {
    PendingAlarm cancelled;
    const KyrCoreUtils::LockGuard lock(mutex);
    if (const auto found = pending.find(alarm); found != pending.end()) {
        clock->cancel(found->second.clockAlarm);
        cancelled = std::move(found->second); // may own the last references of its captures: destroyed after the unlock
        pending.erase(found);
    }
}

bool TimerSwitch::fireAll() {
    std::map<Alarm, PendingAlarm> due;
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        due.swap(pending);
    }
    for (const auto& [alarm, entry] : due) {
        clock->cancel(entry.clockAlarm);
        entry.action();
    }
    return !due.empty();
}

void TimerSwitch::fire(Alarm alarm) {
    PendingAlarm due;
    {
        const KyrCoreUtils::LockGuard lock(mutex);
        const auto found = pending.find(alarm);
        if (found == pending.end()) {
            return;
        }
        due = std::move(found->second);
        pending.erase(found);
    }
    due.action();
}

} // namespace lumora_config
