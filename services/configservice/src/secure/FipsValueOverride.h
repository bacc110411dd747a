#pragma once

#include <string>
#include <string_view>

namespace zel {

/// Whether it is "Telephony_P2P_Enabled", in any case, on a machine in FIPS mode, where that reads "false" whatever a
/// source says.
bool hasFipsOverride(std::wstring_view key);

/// Overwrites the value of such a key.
void applyFipsValueOverride(std::wstring_view key, std::wstring& value);

/// What a source holds for the key, or what overrides it.
std::wstring_view withFipsOverride(std::wstring_view key, std::wstring_view held);

} // namespace zel
