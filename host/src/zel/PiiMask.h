#pragma once

#include <string>
#include <string_view>

namespace zel::logging {

/// Masks personal data in UTF-8 text in one pass, as ZelLogger_replacePIIData() promises.
std::string maskPersonalData(std::string_view text);

} // namespace zel::logging
