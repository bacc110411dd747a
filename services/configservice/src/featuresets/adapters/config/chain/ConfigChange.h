#pragma once

#include <string>

namespace ZelUnified {

/// What is now true of a key, as observers are told.
struct ConfigChange {
    /// Zeroes the values: they may be secrets.
    ~ConfigChange();

    std::wstring value;
    std::wstring originalValue;
    bool isOverridden = false;
    bool isDefined = false;
    std::wstring valueStoreName;
    std::wstring originalValueStoreName;
};

} // namespace ZelUnified
