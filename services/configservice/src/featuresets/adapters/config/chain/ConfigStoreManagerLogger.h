#pragma once

#include "logging/OperationLogger.h"

namespace ZelUnified {

/// The logger of the manager and its helper classes.
inline const OperationLogger& configStoreManagerLogger() {
    static const OperationLogger logger("ConfigStoreManager");
    return logger;
}

} // namespace ZelUnified
