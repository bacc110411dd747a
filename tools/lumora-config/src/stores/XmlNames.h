#pragma once

#include <optional>
#include <string_view>

namespace lumora_config {

/// Returns true if the text is a valid name of an XML element.
bool isXmlName(std::wstring_view text);

/// Returns the first character or lone surrogate that no XML document can contain, or nothing.
std::optional<char32_t> findUnrepresentable(std::wstring_view text);

} // namespace lumora_config
