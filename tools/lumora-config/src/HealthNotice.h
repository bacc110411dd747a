#pragma once

#include "Printer.h"

#include <string>

namespace lumora_config {

/// Prints one line that names the protected files which are unreadable, damaged or encrypted with another key, and
/// those that were moved aside, by this run or an earlier one. Prints nothing if there are none.
void showHealthNotice(const std::string& configDirectory, Printer& printer);

} // namespace lumora_config
