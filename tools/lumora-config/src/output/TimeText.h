#pragma once

#include <chrono>
#include <string>

namespace lumora_config {

/// Returns the time in ISO 8601, in UTC, to the second.
std::string formatTime(std::chrono::system_clock::time_point time);

} // namespace lumora_config
