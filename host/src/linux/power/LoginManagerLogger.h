#pragma once

#include <zel/ZelLog.h>

namespace ZelSystemMonitor {

/// The logger of all classes that communicate with the login manager.
inline ZelLogger& loginManagerLogger = ZelLogger_getLogger("SystemMonitor-LoginManager");

} // namespace ZelSystemMonitor
