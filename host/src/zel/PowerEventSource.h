#pragma once

#include <zel/PowerEventObserver.h>

#include <functional>
#include <memory>

namespace ZelSystemMonitor {

/// Delays the machine's announced action until the last reference is released, or until the machine's own timeout. Null
/// if the machine does not wait.
using PowerEventHold = std::shared_ptr<const void>;

/// Called on the source's thread; must not throw.
using PowerEventReceiver = std::function<void(PowerEventTypeEnum::PowerEventType type, PowerEventHold hold)>;

/// The source of the machine's power events. After its destructor the receiver is not called. If the receiver itself
/// destroys the source, only that running call continues.
class PowerEventSource {
public:
    virtual ~PowerEventSource() = default;
};

/// Returns the platform's source; null if it has none. Returns immediately: if no events can be received, the log says
/// so later.
LUMORA_HOST_API std::unique_ptr<PowerEventSource> openPowerEventSource(PowerEventReceiver receiver);

} // namespace ZelSystemMonitor
