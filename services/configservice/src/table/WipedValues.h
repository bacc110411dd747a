#pragma once

#include "secure/SecureString.h"

#include <ConfigMap.h>

#include <string>
#include <string_view>

namespace ZelUnified {

/// Zeroes the values of a table before it is destroyed, because any of them may be a secret.
inline void wipeValues(ConfigMap& values) {
    for (auto& [key, value] : values) {
        zel::SecureString::wipe(value);
    }
}

/// Calls wipeValues() in its destructor, however the scope ends.
class ValuesWiper {
public:
    explicit ValuesWiper(ConfigMap& wiped) noexcept : values(wiped) {}
    ~ValuesWiper() { wipeValues(values); }
    ValuesWiper(const ValuesWiper&) = delete;
    ValuesWiper& operator=(const ValuesWiper&) = delete;

private:
    ConfigMap& values;
};

/// Overwrites a value and zeroes the old one. If an allocation fails, throws and leaves the value unchanged.
inline void overwriteValue(std::wstring& value, std::wstring_view next) {
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
