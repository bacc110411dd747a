#pragma once

#include <string>
#include <vector>

namespace lumora_config {

/// Returns what a reset should have deleted but has not: files of the configuration directory, except those that
/// survive a reset, and the user's own policy files that still contain the client's policy.
std::vector<std::string> findResetLeftovers(const std::string& configDirectory);

} // namespace lumora_config
