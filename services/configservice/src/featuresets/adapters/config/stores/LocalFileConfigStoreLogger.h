#pragma once

#include "logging/OperationLogger.h"

namespace ZelUnified {

/// The logger of the store and of its document.
inline const OperationLogger localFileConfigStoreLogger("LocalFileConfigStore");

} // namespace ZelUnified
