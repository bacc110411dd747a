#pragma once

#include "BundleMask.h"

#include <string>

namespace lumora_config {

/// Returns the stores of a report with their keys, as a document whose values are masked. Leaves out what follows the
/// stores: the protected files of other services, whose secrets nobody knows. Throws Failure (Environment) if the
/// report is not well-formed.
std::string maskReport(const std::string& report, const BundleMask& mask);

} // namespace lumora_config
