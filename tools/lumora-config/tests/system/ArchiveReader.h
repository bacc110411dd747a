#pragma once

#include <map>
#include <string>

namespace program_test {

/// Returns the members of an archive by their names. Throws std::runtime_error if it cannot be read.
std::map<std::string, std::string> readArchive(const std::string& path);

} // namespace program_test
