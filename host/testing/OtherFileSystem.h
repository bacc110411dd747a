#pragma once

#include <filesystem>
#include <string>

namespace testing_host {

/// Returns the path for a file of this process in a folder on another file system than the given folder; empty if the
/// machine has no such folder that this process can write. Does not create the file.
std::filesystem::path findPathOnOtherFileSystem(const std::filesystem::path& folder, const std::string& name);

} // namespace testing_host
