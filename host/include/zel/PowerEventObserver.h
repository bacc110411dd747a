#pragma once

#include <zel/HostExport.h>

namespace ZelSystemMonitor {

namespace PowerEventTypeEnum {

// Of a fixed type: the platform may hand on numbers without a name here.
enum PowerEventType : int { ShutdownCancelled = 0, Suspend = 1, Resume = 2, PowerDown = 3 };

} // namespace PowerEventTypeEnum

/// Told of the machine's power events, on the services dispatcher's thread while a factory runs (of several factories
/// that of the last one), else on the monitor's own. The machine waits some seconds with a power-down until all
/// observers are told. What one throws is logged. Held weakly.
class LUMORA_HOST_API PowerEventObserver {
public:
    virtual void onPowerEvent(PowerEventTypeEnum::PowerEventType type) = 0;

protected:
    ~PowerEventObserver() = default;
};

} // namespace ZelSystemMonitor
