#pragma once

#include <zel/ZelLog.h>

namespace zel::storage {

/// The logger of the protected files and their keys.
inline ZelLogger& encryptFileUtilsLogger = ZelLogger_getLogger("Host-EncryptFileUtils");

} // namespace zel::storage
