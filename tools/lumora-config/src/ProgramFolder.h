#pragma once

#include <string>

namespace lumora_config {

/// The folder in which the running program lies; empty when the platform can't tell.
std::string getProgramFolder();

} // namespace lumora_config
