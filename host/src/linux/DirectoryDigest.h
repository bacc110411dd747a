#pragma once

#include <string>

namespace zel::platform {

/// Returns 32 hexadecimal digits for the directory, the same ones in all processes and for all its spellings, whether
/// it exists or not. They name a file of the directory elsewhere, where the path itself may be too long. Half of a
/// digest distinguishes the profiles of one user.
std::string digestDirectory(const std::string& directory);

} // namespace zel::platform
