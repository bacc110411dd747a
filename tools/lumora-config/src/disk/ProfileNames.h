#pragma once

#include <string>
#include <vector>

namespace lumora_config {

/// Read the files of the profile and, on a system with a registry, its policies, without the plug-in, without its lock,
/// and without changing anything. A file that cannot be read adds no names. They never throw.

/// Returns the keys in the user's settings, the cached copies, the policies and the defaults file, each once, ignoring
/// case. The spelling of the first file that is not the user's wins, because the user's file contains lower case.
std::vector<std::wstring> readKeysOfProfile();

/// Returns the names of the stores that a start on this profile adds to the chain.
std::vector<std::string> readStoresOfProfile();

} // namespace lumora_config
