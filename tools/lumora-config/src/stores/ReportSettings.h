#pragma once

#include "output/SettingsDump.h"

#include <string>
#include <string_view>

namespace lumora_config {

/// Parses the text of `report`. Returns each key once, with the value in force and its store: the stores are in chain
/// order, and the new name of a key wins in whichever store it is. A report contains neither the defaults nor sensitive
/// keys. Throws Failure (Environment) with `name` and the reason.
SettingsDump parseReport(std::string_view report, const std::string& name);

/// Returns the element of a report that lists the stores with their keys. Throws like parseReport().
std::string_view findReportedStores(std::string_view report, const std::string& name);

} // namespace lumora_config
