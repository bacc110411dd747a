#pragma once

#include "BundleMask.h"
#include "output/ChainPage.h"

#include <vector>

namespace lumora_config {

/// Apply the mask to every text that does not come from the program or the catalogue: values, the names of stores and
/// of unknown keys, paths, messages.
void maskFindings(ChainFindings& findings, const BundleMask& mask);
void maskFindings(std::vector<ListedValue>& values, const BundleMask& mask);

} // namespace lumora_config
