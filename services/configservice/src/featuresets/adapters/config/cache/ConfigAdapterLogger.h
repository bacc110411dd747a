#pragma once

#include "logging/OperationLogger.h"

namespace ZelUnified {

/// The logger of the adapter and its helper classes.
inline const OperationLogger& configAdapterLogger() {
    static const OperationLogger logger("ConfigAdapter");
    return logger;
}

} // namespace ZelUnified
