#pragma once

#include <string>
#include <string_view>

namespace lumora_config {

/// Returns the text (UTF-8) made fit for one line: control characters (C0, DEL and C1) and line separators are shown as
/// escapes, and so is each byte that is not UTF-8.
std::string toOneLine(std::string_view text);

/// As toOneLine(), but line feeds and tabulators remain.
std::string toVisibleLines(std::string_view text);

} // namespace lumora_config
