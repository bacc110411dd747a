#pragma once

#include <string>

namespace lumora_config {

/// The folder of the plug-in `configservice`: `asked`, or else the one of the build or the installation that the
/// program belongs to. Throws Failure (Environment) when there is no plug-in.
std::string findPluginFolder(const std::string& asked);

} // namespace lumora_config
