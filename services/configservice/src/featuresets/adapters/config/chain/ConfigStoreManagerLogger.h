#pragma once

#include "logging/OperationLogger.h"

namespace ZelUnified {

/// The logger of the manager and its helper classes.
inline const OperationLogger configStoreManagerLogger("ConfigStoreManager");

} // namespace ZelUnified
