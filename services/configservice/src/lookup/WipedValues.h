#pragma once

#include "secure/SecureString.h"

#include <ConfigMap.h>

namespace ZelUnified {

/// Zeroes the values of a table that is about to go: any of them may be a secret.
inline void wipeValues(ConfigMap& values) {
    for (auto& [key, value] : values) {
        zel::SecureString::wipe(value);
    }
}

} // namespace ZelUnified
