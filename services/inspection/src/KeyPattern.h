#pragma once

#include <string>
#include <string_view>

namespace inspection {

/// Returns true if the key matches the pattern, case-insensitively. "*" matches any text, "?" one character.
bool matchesPattern(std::wstring_view key, std::wstring_view pattern);

} // namespace inspection
