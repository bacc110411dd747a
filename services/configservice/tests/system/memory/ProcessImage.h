#pragma once

#include <sys/types.h>

#include <string>

namespace memory_test {

/// Returns the memory of a stopped child of this process, or "" if it is unreadable. Temporary files are written to
/// `folder` and removed.
std::string readProcessImage(pid_t process, const std::string& folder);

} // namespace memory_test
