#pragma once

#include <kyr/FileAccess.h>

#include <string>
#include <vector>

namespace lumora_config {

/// Returns "" if a directory with this access is trusted. Otherwise returns the reason: it belongs to another user who
/// is not root, or everybody may write it.
std::string whyUntrusted(const KyrCoreUtils::FileAccess& access);

/// Throws Failure (Environment) for the first existing directory that is not trusted.
void requireTrusted(const std::vector<std::string>& directories);

} // namespace lumora_config
