#pragma once

#include <kyr/AnnotatedMutex.h>
#include <zel/TimerSource.h>

#include <map>
#include <memory>

namespace lumora_config {

/// The timers of the process, with a switch that fires all pending alarms at once, so that no delayed work is lost when
/// the program ends. Any thread.
class TimerSwitch final : public zel::common::TimerSource, public std::enable_shared_from_this<TimerSwitch> {
public:
    Alarm set(std::int64_t seconds, std::function<void()> ring) override;
    void cancel(Alarm alarm) override;

    /// Fires all pending alarms on the calling thread without holding the lock. Alarms that they set fire at their
    /// time. Returns false if none was pending.
    bool fireAll();

private:
    struct PendingAlarm {
        Alarm clockAlarm = 0;
        std::function<void()> action;
    };

    void fire(Alarm alarm);

    const std::shared_ptr<TimerSource> clock = TimerSource::getInstance();
    KyrCoreUtils::AnnotatedMutex<> mutex;
    Alarm last LUMORA_GUARDED_BY(mutex) = 0;
    /// The thread that removes an alarm fires it.
    std::map<Alarm, PendingAlarm> pending LUMORA_GUARDED_BY(mutex);
};

} // namespace lumora_config
