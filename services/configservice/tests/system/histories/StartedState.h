#pragma once

#include "Call.h"
#include "HistoryState.h"

#include <string>
#include <vector>

namespace config_model {

/// Returns the state of a service on a new profile that was constructed and started and has made these calls, with all
/// their tasks run.
HistoryState makeStartedState(const Pairs& policy, const std::vector<Call>& before);
/// Returns the records and the lookup of each key.
std::vector<std::string> describeEnd(HistoryState& state);
std::string describeLookup(const std::wstring& key, const Reading& reading);

} // namespace config_model
