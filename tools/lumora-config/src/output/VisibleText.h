#pragma once

#include <string>
#include <string_view>

namespace lumora_config {

/// The text with what a reader would not see made visible: control characters become the signs for them, marks that
/// turn the direction of writing their names. A line break and a tabulator stay. Any thread.
std::wstring makeVisible(std::wstring_view text);

} // namespace lumora_config
