#include "zel/PowerEventSource.h"

namespace ZelSystemMonitor {

// Built without the bus library.
std::unique_ptr<PowerEventSource> openPowerEventSource(PowerEventReceiver) {
    return nullptr;
}

} // namespace ZelSystemMonitor
