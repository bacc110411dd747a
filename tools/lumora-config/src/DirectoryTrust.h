#pragma once

#include <kyr/FileAccess.h>

#include <string>
#include <vector>

namespace lumora_config {

/// Returns why a directory with this access is not to be trusted: it belongs to another user who is not root, or
/// everybody may write it. Returns "" if it is to be trusted.
std::string whyUntrusted(const KyrCoreUtils::FileAccess& access);

/// Throws Failure (Environment) for the first directory that exists and is not to be trusted.
void requireTrusted(const std::vector<std::string>& directories);

} // namespace lumora_config
