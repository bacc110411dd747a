#pragma once

#include <zel/ZelLog.h>

namespace ZelSystemMonitor {

/// The logger of all that speaks with the login manager.
inline ZelLogger& loginManagerLogger() {
    static ZelLogger& logger = ZelLogger_getLogger("SystemMonitor-LoginManager");
    return logger;
}

} // namespace ZelSystemMonitor
