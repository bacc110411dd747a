#pragma once

#include <optional>
#include <string>

namespace lumora_config {

/// The path of the cached copy of this store; empty if the name would lead out of the folder of the copies, because
/// such a store has no copy.
std::optional<std::string> findPathOfCopy(const std::string& configDirectory, const std::string& storeName);

} // namespace lumora_config
