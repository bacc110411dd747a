#pragma once

#include "CommandGrammar.h"
#include "output/Findings.h"

#include <functional>
#include <string>
#include <vector>

namespace lumora_config {

/// Removes the values that the search of `list` excludes. The values are masked, so that a search reveals no secret.
void removeMismatches(std::vector<ListedValue>& values, const Command& command,
                      const std::function<bool(const std::wstring& key)>& isSensitive);

/// Returns the message of a search without a result.
std::string describeEmptyList(const Command& command);

} // namespace lumora_config
