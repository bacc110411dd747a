#pragma once

#include <string>

namespace lumora_config {

/// Returns the folder of the plug-in `configservice`: `asked` or, if that is empty, the folder of the build or
/// installation of the program. Throws Failure (Environment) if there is no plug-in.
std::string findPluginFolder(const std::string& asked);

} // namespace lumora_config
