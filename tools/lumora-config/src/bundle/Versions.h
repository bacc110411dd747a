#pragma once

#include <string>

namespace lumora_config {

/// Returns the versions of the program, of its libraries and of the system as one JSON object. `client` is the version
/// of the running client, or empty. `pluginDirectory` is that of findInModule(). Throws Failure (Environment).
std::string describeVersions(const std::string& client, const std::string& pluginDirectory);

} // namespace lumora_config
