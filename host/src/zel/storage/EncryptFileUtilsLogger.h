#pragma once

#include <zel/ZelLog.h>

namespace zel::storage {

/// The logger of the protected files and of their keys.
inline ZelLogger& encryptFileUtilsLogger() {
    static ZelLogger& logger = ZelLogger_getLogger("Host-EncryptFileUtils");
    return logger;
}

} // namespace zel::storage
