#pragma once

#include <zel/ZelLog.h>

namespace ZelUnified {

/// The logger of the adapter and of the classes it is made of.
inline ZelLogger& configAdapterLogger() {
    static ZelLogger& logger = ZelLogger_getLogger("ConfigService-ConfigAdapter");
    return logger;
}

} // namespace ZelUnified
