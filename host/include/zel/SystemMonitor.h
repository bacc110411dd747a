#pragma once

#include <zel/PowerEventObserver.h>

#include <memory>

namespace ZelSystemMonitor {

/// Watches the machine for power events. Any thread.
class LUMORA_HOST_API SystemMonitor {
public:
    virtual ~SystemMonitor() = default;
    /// Adds the observer, unless the list contains it already.
    virtual void addPowerEventObserver(std::weak_ptr<PowerEventObserver> observer) = 0;
    /// Removes the observer. Does not wait for a running callback of it.
    virtual void removePowerEventObserver(std::weak_ptr<PowerEventObserver> observer) = 0;
};

} // namespace ZelSystemMonitor
