#pragma once

#include "lookup/FoldedKey.h"
#include "secure/FipsValueOverride.h"

#include <string>

namespace ZelUnified {

/// What a store says of a key for which it holds `found`, null when it holds nothing: a miss empties the value.
inline bool answerWith(const std::wstring* found, const FoldedKey& key, std::wstring& value) {
    if (found == nullptr) {
        value.clear();
        return false;
    }
    value = zel::withFipsOverride(key.getText(), *found); // last: key and value may be one string
    return true;
}

} // namespace ZelUnified
