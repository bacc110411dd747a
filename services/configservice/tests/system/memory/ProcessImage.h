#pragma once

#include <sys/types.h>

#include <string>

namespace memory_test {

/// The memory of a child of this process, which stands still; empty when it can't be read. What has to be put on the
/// disk for it goes to `folder` and is removed.
std::string readProcessImage(pid_t process, const std::string& folder);

} // namespace memory_test
