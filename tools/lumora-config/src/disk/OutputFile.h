#pragma once

#include <string>

namespace lumora_config {

/// Replaces or creates a file of the user, with mode 0600, and reads it back. Throws Failure (Environment) if the
/// content is not on the disk then. Main thread.
void writeOutputFile(const std::string& path, const std::string& content);

} // namespace lumora_config
