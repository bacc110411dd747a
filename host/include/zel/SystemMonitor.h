#pragma once

#include <zel/PowerEventObserver.h>

#include <memory>

namespace ZelSystemMonitor {

/// Watches the machine for power events. Any thread.
class LUMORA_HOST_API SystemMonitor {
public:
    virtual ~SystemMonitor() = default;
    /// An observer that is on the list already is not added twice.
    virtual void addPowerEventObserver(std::weak_ptr<PowerEventObserver> observer) = 0;
    /// Doesn't wait for an observer that is just being told.
    virtual void removePowerEventObserver(std::weak_ptr<PowerEventObserver> observer) = 0;
};

} // namespace ZelSystemMonitor
