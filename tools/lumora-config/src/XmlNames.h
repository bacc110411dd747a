#pragma once

#include <optional>
#include <string_view>

namespace lumora_config {

/// Returns true if an XML document may have an element of this name.
bool isXmlName(std::wstring_view text);

/// Returns the first character (or lone surrogate) of the text that no XML document can contain; nothing if there is
/// none.
std::optional<char32_t> findUnrepresentable(std::wstring_view text);

} // namespace lumora_config
