#pragma once

#include <string>

namespace lumora_config {

/// Returns the versions of the program, of its libraries and of the system as one JSON object. `client` is the version
/// of the running client, or empty.
std::string describeVersions(const std::string& client);

} // namespace lumora_config
