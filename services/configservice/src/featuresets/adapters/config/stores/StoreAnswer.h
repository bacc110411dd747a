#pragma once

#include "secure/FipsValueOverride.h"
#include "table/FoldedKey.h"

#include <kyr/StringUtils.h>

#include <ConfigKeys.h>

#include <optional>
#include <string>
#include <string_view>

namespace ZelUnified {

/// Sets `value` to `found` and returns true; if `found` has no value, clears `value` and returns false. The FIPS
/// override applies to a hit.
inline bool answerWith(std::optional<std::wstring_view> found, const FoldedKey& key, std::wstring& value) {
    if (!found) {
        value.clear();
        return false;
    }
    value = zel::withFipsOverride(key.getText(), *found); // last: `key` may refer to `value`
    return true;
}

/// The same for stores that hold and list the key for certificate validation but never return its value.
inline bool answerUnlessWithheld(std::optional<std::wstring_view> found, const FoldedKey& key, std::wstring& value) {
    const bool isWithheld =
        found && KyrCoreUtils::caseInsensitiveStringEquals(key.getText(), ConfigKeys::certificateValidationEnabled);
    return answerWith(isWithheld ? std::nullopt : found, key, value);
}

} // namespace ZelUnified
