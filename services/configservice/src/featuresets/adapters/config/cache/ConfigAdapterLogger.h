#pragma once

#include "logging/OperationLogger.h"

namespace ZelUnified {

/// The logger of the adapter and its helper classes.
inline const OperationLogger configAdapterLogger("ConfigAdapter");

} // namespace ZelUnified
