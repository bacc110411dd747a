#pragma once

#include <string>

namespace ZelUnified {

/// The new state of a key, as observers receive it.
struct ConfigChange {
    /// Zeroes the values, which may be secrets.
    ~ConfigChange();

    std::wstring value;
    std::wstring originalValue;
    bool isOverridden = false;
    bool isDefined = false;
    std::wstring valueStoreName;
    std::wstring originalValueStoreName;
};

} // namespace ZelUnified
