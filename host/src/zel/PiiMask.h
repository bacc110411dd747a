#pragma once

#include <string>
#include <string_view>

namespace zel::logging {

/// Masks personal data in UTF-8 text in one pass; see ZelLogger_replacePIIData().
std::string maskPersonalData(std::string_view text);

/// Returns false if maskPersonalData() would not change the text. May return true for other texts, too, because it only
/// searches for the characters with which a rule begins.
bool mayHoldPersonalData(std::string_view text) noexcept;
bool mayHoldPersonalData(std::wstring_view text) noexcept;

} // namespace zel::logging
