#pragma once

#include <zel/ZelLog.h>

namespace ZelUnified {

/// The logger of the manager and of the classes it is made of.
inline ZelLogger& configStoreManagerLogger() {
    static ZelLogger& logger = ZelLogger_getLogger("ConfigService-ConfigStoreManager");
    return logger;
}

} // namespace ZelUnified
