#pragma once

#include <kyr/AnnotatedMutex.h>
#include <zel/SystemMonitor.h>

#include <memory>
#include <vector>

namespace lumora_config {

/// Replaces the system monitor, so that the shell can announce power events. Any thread.
class PowerSwitch final : public ZelSystemMonitor::SystemMonitor {
public:
    void addPowerEventObserver(std::weak_ptr<ZelSystemMonitor::PowerEventObserver> observer) override;
    void removePowerEventObserver(std::weak_ptr<ZelSystemMonitor::PowerEventObserver> observer) override;

    /// Notifies every observer on the calling thread without holding the lock. Returns the number of observers.
    std::size_t announce(ZelSystemMonitor::PowerEventTypeEnum::PowerEventType type);

private:
    KyrCoreUtils::AnnotatedMutex<> mutex;
    std::vector<std::weak_ptr<ZelSystemMonitor::PowerEventObserver>> observers LUMORA_GUARDED_BY(mutex);
};

} // namespace lumora_config
