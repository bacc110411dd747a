#pragma once

#include "secure/SecureString.h"

#include <ConfigMap.h>

#include <string>

namespace ZelUnified {

/// Zeroes the values of a table that is about to go: any of them may be a secret.
inline void wipeValues(ConfigMap& values) {
    for (auto& [key, value] : values) {
        zel::SecureString::wipe(value);
    }
}

/// Overwrites a value, which stays as it is when there is no memory for the next one.
inline void overwriteValue(std::wstring& value, const std::wstring& next) {
    if (next.size() <= value.capacity()) {
        zel::SecureString::wipe(value);
        value = next;
        return;
    }
    std::wstring larger(next);
    zel::SecureString::wipe(value);
    value.swap(larger);
}

} // namespace ZelUnified
