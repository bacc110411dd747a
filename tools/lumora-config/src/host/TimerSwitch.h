#pragma once

#include <zel/TimerSource.h>

#include <map>
#include <memory>
#include <mutex>

namespace lumora_config {

/// The process's timers, and a switch that lets all that wait ring at once, so that nothing which was delayed is lost
/// when the program ends. Any thread.
class TimerSwitch final : public zel::common::TimerSource, public std::enable_shared_from_this<TimerSwitch> {
public:
    Alarm set(std::int64_t seconds, std::function<void()> ring) override;
    void cancel(Alarm alarm) override;

    /// Rings what waits now, on the calling thread and with no lock held. What they set in turn waits as usual.
    void ringAll();

private:
    struct Waiting {
        Alarm ofClock = 0;
        std::function<void()> ring;
    };

    void ring(Alarm alarm);

    const std::shared_ptr<TimerSource> clock = TimerSource::getInstance();
    std::mutex mutex;
    Alarm last = 0;                   ///< Guarded by `mutex`.
    std::map<Alarm, Waiting> waiting; ///< Guarded by `mutex`. Who takes an alarm out of it rings it.
};

} // namespace lumora_config
