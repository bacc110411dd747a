#pragma once

#include "lookup/FoldedKey.h"
#include "secure/FipsValueOverride.h"

#include <kyr/StringUtils.h>

#include <ConfigKeys.h>

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

/// The same for sources whose word on the check of certificates is held and listed, but never given.
inline bool answerUnlessWithheld(const std::wstring* found, const FoldedKey& key, std::wstring& value) {
    const bool isWithheld = found != nullptr && KyrCoreUtils::caseInsensitiveStringEquals(
                                                    key.getText(), ConfigKeys::certificateValidationEnabled);
    return answerWith(isWithheld ? nullptr : found, key, value);
}

} // namespace ZelUnified
