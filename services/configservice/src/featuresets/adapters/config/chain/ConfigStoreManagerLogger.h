#pragma once

#include "logging/OperationLogger.h"

namespace ZelUnified {

/// The logger of the manager and of the classes it is made of.
inline const OperationLogger& configStoreManagerLogger() {
    static const OperationLogger logger("ConfigStoreManager");
    return logger;
}

} // namespace ZelUnified
