#include "zel/PowerEventSource.h"

namespace ZelSystemMonitor {

// Used if the build has no bus library.
std::unique_ptr<PowerEventSource> openPowerEventSource(PowerEventReceiver) {
    return nullptr;
}

} // namespace ZelSystemMonitor
