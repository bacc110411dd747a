#pragma once

#include <kyr/FileUtils.h>

#include <filesystem>
#include <string>

/// The platform-specific file and directory operations. Errors are errno values, 0 is success.
namespace KyrCoreUtils::platform {

/// Returns the folders of the current user and of the installation; "" for a folder that cannot be determined.
HostDirectories defaultDirectories();
/// Returns the home folder; empty if it is unknown.
std::filesystem::path homeDirectory();

/// Creates one directory that only its owner may enter.
int makeDirectory(const std::filesystem::path& path) noexcept;
/// Removes a file or a link, never a directory.
int removeFile(const std::filesystem::path& path) noexcept;
/// Moves a file, also across devices; the target appears complete or not at all.
int moveFile(const std::filesystem::path& source, const std::filesystem::path& target, bool failIfExists) noexcept;
/// Creates `path` or checks that it is a regular file, and restricts it to its owner. Does not change its content.
int makePrivateFile(const std::filesystem::path& path) noexcept;

} // namespace KyrCoreUtils::platform
