#pragma once

#include "secure/FipsValueOverride.h"
#include "table/FoldedKey.h"

#include <kyr/StringUtils.h>

#include <ConfigKeys.h>

#include <optional>
#include <string>
#include <string_view>

namespace ZelUnified {

/// What a store says of a key for which it holds `found`, if anything: a miss empties the value.
inline bool answerWith(std::optional<std::wstring_view> found, const FoldedKey& key, std::wstring& value) {
    if (!found) {
        value.clear();
        return false;
    }
    value = zel::withFipsOverride(key.getText(), *found); // last: key and value may be one string
    return true;
}

/// The same for sources whose word on the check of certificates is held and listed, but never given.
inline bool answerUnlessWithheld(std::optional<std::wstring_view> found, const FoldedKey& key, std::wstring& value) {
    const bool isWithheld =
        found && KyrCoreUtils::caseInsensitiveStringEquals(key.getText(), ConfigKeys::certificateValidationEnabled);
    return answerWith(isWithheld ? std::nullopt : found, key, value);
}

} // namespace ZelUnified
