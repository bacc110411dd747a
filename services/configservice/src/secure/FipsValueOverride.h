#pragma once

#include <string>
#include <string_view>

namespace zel {

/// On a machine in FIPS mode "Telephony_P2P_Enabled", in any case, reads "false" whatever a source says.
void applyFipsValueOverride(std::wstring_view key, std::wstring& value);

/// What a source holds for the key, or what overrides it.
std::wstring_view withFipsOverride(std::wstring_view key, std::wstring_view held);

} // namespace zel
