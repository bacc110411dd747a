#pragma once

#include "Completion.h"

#include <string>
#include <vector>

namespace lumora_config {

/// Returns the new and old names of the keys of the catalogue, with their meaning. Any thread.
std::vector<Candidate> listCatalogueKeys();

/// Returns the values that the catalogue permits for the key; none if it permits any text. Any thread.
std::vector<Candidate> listCatalogueValues(const std::string& key);

} // namespace lumora_config
