#pragma once

#include <string>
#include <string_view>

namespace zel {

/// Sets `value` to "false" if the override applies to `key`: if that is "Telephony_P2P_Enabled" (case-insensitive) and
/// the machine is in FIPS mode. There the key reads "false", whatever a store contains.
void applyFipsValueOverride(std::wstring_view key, std::wstring& value);

/// Returns `value`, or "false" if the override applies to `key`.
std::wstring_view withFipsOverride(std::wstring_view key, std::wstring_view held);

} // namespace zel
