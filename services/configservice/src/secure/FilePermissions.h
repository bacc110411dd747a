#pragma once

#include <string>

namespace ZelUnified {

/// Leaves the file to its owner alone, to read and to write, whatever the umask said when it was made. `path` is UTF-8.
/// A failure is silent.
void restrictToOwner(const std::string& path);

} // namespace ZelUnified
