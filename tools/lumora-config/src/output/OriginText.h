#pragma once

#include "Findings.h"

#include <string>

namespace lumora_config {

/// Returns the origin as text: "FILE:LINE", "HOW at WHEN, FILE:LINE", or "" if it is unknown. Not escaped.
std::string describe(const Origin& origin);

} // namespace lumora_config
