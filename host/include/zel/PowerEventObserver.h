#pragma once

#include <zel/HostExport.h>

namespace ZelSystemMonitor {

namespace PowerEventTypeEnum {

// Has a fixed underlying type because the platform may pass numbers without a name here.
enum PowerEventType : int { ShutdownCancelled = 0, Suspend = 1, Resume = 2, PowerDown = 3 };

} // namespace PowerEventTypeEnum

/// Receives the machine's power events. Called on the services dispatcher's thread while a factory runs (with several
/// factories, that of the last one), otherwise on the monitor's own thread. The machine delays a power-down for some
/// seconds until all observers have returned. An exception of an observer is logged. The monitor holds observers
/// weakly.
class LUMORA_HOST_API PowerEventObserver {
public:
    virtual void onPowerEvent(PowerEventTypeEnum::PowerEventType type) = 0;

protected:
    ~PowerEventObserver() = default;
};

} // namespace ZelSystemMonitor
