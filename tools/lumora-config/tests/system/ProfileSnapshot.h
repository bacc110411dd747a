#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace program_test {

/// Describes everything at and below a folder by its path: kind, mode, owner, size, inode, the times of the last
/// changes of content and of inode, and the content or the target of the link.
using ProfileSnapshot = std::map<std::string, std::string>;

ProfileSnapshot takeSnapshot(const std::filesystem::path& folder);

} // namespace program_test
