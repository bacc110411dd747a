#pragma once

#include <string>
#include <string_view>

namespace fleet {

/// Returns the text for a log line: at most 200 bytes, and '?' for each byte that is not printable ASCII.
std::string toLoggedText(std::string_view text);

} // namespace fleet
