#pragma once

#include <zel/ZelLog.h>

namespace zel::storage {

/// Returns the logger of the protected files and their keys.
inline ZelLogger& encryptFileUtilsLogger() {
    static ZelLogger& logger = ZelLogger_getLogger("Host-EncryptFileUtils");
    return logger;
}

} // namespace zel::storage
