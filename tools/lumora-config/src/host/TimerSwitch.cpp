#include "TimerSwitch.h"

#include <utility>

namespace lumora_config {

TimerSwitch::Alarm TimerSwitch::set(std::int64_t seconds, std::function<void()> ring) {
    const std::lock_guard lock(mutex);
    const Alarm alarm = ++last;
    Waiting& added = waiting[alarm];
    added.ring = std::move(ring);
    added.ofClock = clock->set(seconds, [weak = weak_from_this(), alarm] {
        if (const auto self = weak.lock()) {
            self->ring(alarm);
        }
    });
    return alarm;
}

void TimerSwitch::cancel(Alarm alarm) {
    Waiting cancelled;
    const std::lock_guard lock(mutex);
    if (const auto found = waiting.find(alarm); found != waiting.end()) {
        clock->cancel(found->second.ofClock);
        cancelled = std::move(found->second); // may own the last references of its captures: destroyed after the unlock
        waiting.erase(found);
    }
}

void TimerSwitch::ringAll() {
    std::map<Alarm, Waiting> rung;
    {
        const std::lock_guard lock(mutex);
        rung.swap(waiting);
    }
    for (const auto& [alarm, entry] : rung) {
        clock->cancel(entry.ofClock);
        entry.ring();
    }
}

void TimerSwitch::ring(Alarm alarm) {
    Waiting rung;
    {
        const std::lock_guard lock(mutex);
        const auto found = waiting.find(alarm);
        if (found == waiting.end()) {
            return;
        }
        rung = std::move(found->second);
        waiting.erase(found);
    }
    rung.ring();
}

} // namespace lumora_config
