#pragma once

#include <kyr/FileUtils.h>

#include <filesystem>
#include <string>

/// What the platform contributes to the files and directories. Errors are errno values, 0 is success.
namespace KyrCoreUtils::platform {

/// The folders of the current user and of the installation; "" where one can't be settled.
HostDirectories defaultDirectories();
/// The home folder; empty when it is unknown.
std::filesystem::path homeDirectory();

/// Makes one directory that only its owner may enter.
int makeDirectory(const std::filesystem::path& path) noexcept;
/// Removes a file or a link.
int removeFile(const std::filesystem::path& path) noexcept;
/// Moves a file, across devices too; the target appears whole or not at all.
int moveFile(const std::filesystem::path& source, const std::filesystem::path& target, bool failIfExists) noexcept;
/// Makes sure that `path` is a regular file of the owner alone, without changing its content.
int makePrivateFile(const std::filesystem::path& path) noexcept;

} // namespace KyrCoreUtils::platform
