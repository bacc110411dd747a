#pragma once

#include "SettingsDump.h"

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace lumora_config {

/// Return the objects that `dump`, `load` and `diff` print with --json.
nlohmann::ordered_json toJson(const SettingsDump& dump);
nlohmann::ordered_json toJson(const LoadSummary& summary);
nlohmann::ordered_json toJson(const Comparison& comparison);

/// Returns the report in the output of `report --json`, or nothing if the text is something else.
std::optional<std::string> findReportText(std::string_view content);

} // namespace lumora_config
