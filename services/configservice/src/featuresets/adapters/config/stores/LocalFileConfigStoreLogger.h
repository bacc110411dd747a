#pragma once

#include <zel/ZelLog.h>

namespace ZelUnified {

/// The logger of the store and of its document.
inline ZelLogger& localFileConfigStoreLogger() {
    static ZelLogger& logger = ZelLogger_getLogger("ConfigService-LocalFileConfigStore");
    return logger;
}

} // namespace ZelUnified
