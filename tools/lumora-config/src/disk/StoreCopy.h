#pragma once

#include <optional>
#include <string>

namespace lumora_config {

/// Returns the path of the cached copy of this store. Returns nothing if the name would lead out of the folder of the
/// copies: such a store has no copy.
std::optional<std::string> findPathOfCopy(const std::string& configDirectory, const std::string& storeName);

} // namespace lumora_config
