#pragma once

#include <string>
#include <string_view>

namespace lumora_config {

/// Returns the text with invisible characters made visible: control characters become their symbols, bidirectional
/// marks their names. Line breaks and tabs are kept. Any thread.
std::wstring makeVisible(std::wstring_view text);

} // namespace lumora_config
