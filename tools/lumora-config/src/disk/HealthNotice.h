#pragma once

#include "output/Printer.h"

#include <string>

namespace lumora_config {

/// Prints one line that names the protected files that are unreadable, damaged or encrypted with another key, and the
/// files that this run or an earlier one has moved aside. Prints nothing if there are none.
void showHealthNotice(const std::string& configDirectory, Printer& printer);

} // namespace lumora_config
