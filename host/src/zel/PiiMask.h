#pragma once

#include <string>
#include <string_view>

namespace zel::logging {

/// Masks personal data in UTF-8 text in one pass, as ZelLogger_replacePIIData() promises.
std::string maskPersonalData(std::string_view text);

/// False where maskPersonalData() leaves the text as it is. True may be wrong: only the characters are looked for that
/// one of the rules begins with.
bool mayHoldPersonalData(std::string_view text) noexcept;
bool mayHoldPersonalData(std::wstring_view text) noexcept;

} // namespace zel::logging
