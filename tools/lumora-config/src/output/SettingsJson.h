#pragma once

#include "SettingsDump.h"

#include <nlohmann/json_fwd.hpp>

namespace lumora_config {

/// Return the objects that `dump`, `load` and `diff` print with --json.
nlohmann::ordered_json toJson(const SettingsDump& dump);
nlohmann::ordered_json toJson(const LoadSummary& summary);
nlohmann::ordered_json toJson(const Comparison& comparison);

} // namespace lumora_config
