#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace testing_host {

/// Starts processes that wait for the same moment and create the key of the user's data in this folder. Returns the
/// keys that they got; a process that got none is left out.
std::vector<std::string> makeKeysInProcesses(const std::string& dataDirectory, std::size_t count);

} // namespace testing_host
