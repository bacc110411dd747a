#pragma once

#include <zel/PowerEventObserver.h>

#include <functional>
#include <memory>

namespace ZelSystemMonitor {

/// What the machine waits for before it goes on with what it announced: until the last reference is gone, or until its
/// own patience ends. Empty when it doesn't wait.
using PowerEventHold = std::shared_ptr<const void>;

/// Called on the source's thread; doesn't throw.
using PowerEventReceiver = std::function<void(PowerEventTypeEnum::PowerEventType type, PowerEventHold hold)>;

/// Where the machine's power events come from. After its end nothing is received any more; only when the receiver ends
/// it, the call that is under way goes on.
class PowerEventSource {
public:
    virtual ~PowerEventSource() = default;
};

/// The platform's source; empty when it has none. Returns at once: that nothing can be heard shows later, in the log.
LUMORA_HOST_API std::unique_ptr<PowerEventSource> openPowerEventSource(PowerEventReceiver receiver);

} // namespace ZelSystemMonitor
