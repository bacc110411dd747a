#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// Returns true if the client writes or reads a file of this name in its configuration directory, or one that stands
/// for it: moved aside because it could not be read, or the temporary file of a write. `path` is relative to the
/// directory, with "/" between its parts.
bool isFileOfTheClient(std::string_view path);

/// Returns the files at and below the configuration directory that are not the client's, relative to it and sorted.
std::vector<std::string> findForeignFiles(const std::string& configDirectory);

} // namespace lumora_config
