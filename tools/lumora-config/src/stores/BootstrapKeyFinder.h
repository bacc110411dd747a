#pragma once

#include "KeyPlaces.h"

#include <string>
#include <string_view>

namespace lumora_config {

/// Returns the line of each key in an installer's file of "key:value" lines. The last line of a key counts. `file` is
/// only recorded.
KeyPlaces findBootstrapKeys(std::string_view content, const std::string& file);

} // namespace lumora_config
