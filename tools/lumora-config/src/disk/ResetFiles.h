#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Finds the files that a reset deletes although they are not the client's, and those that it should have deleted.
namespace lumora_config {

/// Returns true if the client reads or writes a file of this name in its configuration directory, or if the file
/// derives from one: moved aside because it was unreadable, or the temporary file of a write. `path` is relative to the
/// directory and uses "/".
bool isClientFile(std::string_view path);

/// Returns the files in and below the configuration directory that are not the client's. The paths are relative to it
/// and sorted.
std::vector<std::string> findForeignFiles(const std::string& configDirectory);

/// Returns what a reset should have deleted but has not: files of the configuration directory, except those that
/// survive a reset, and the user's own policy files that still contain the client's policy.
std::vector<std::string> findResetLeftovers(const std::string& configDirectory);

} // namespace lumora_config
