#pragma once

#include <zel/SystemMonitor.h>

#include <memory>
#include <mutex>
#include <vector>

namespace lumora_config {

/// Stands in for the machine's power events, so that the shell can announce one. Any thread.
class PowerSwitch final : public ZelSystemMonitor::SystemMonitor {
public:
    void addPowerEventObserver(std::weak_ptr<ZelSystemMonitor::PowerEventObserver> observer) override;
    void removePowerEventObserver(std::weak_ptr<ZelSystemMonitor::PowerEventObserver> observer) override;

    /// Tells every observer, on the calling thread and with no lock held. The number of them.
    std::size_t announce(ZelSystemMonitor::PowerEventTypeEnum::PowerEventType type);

private:
    std::mutex mutex;
    std::vector<std::weak_ptr<ZelSystemMonitor::PowerEventObserver>> observers; ///< Guarded by `mutex`.
};

} // namespace lumora_config
