#pragma once

#include <zel/ZelLog.h>

namespace ZelSystemMonitor {

/// Returns the logger of all classes that communicate with the login manager.
inline ZelLogger& loginManagerLogger() {
    static ZelLogger& logger = ZelLogger_getLogger("SystemMonitor-LoginManager");
    return logger;
}

} // namespace ZelSystemMonitor
