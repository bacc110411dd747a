#pragma once

#include <filesystem>

namespace testing_host {

/// Returns true if only the owner can access the file or folder. Where files have modes, that is 0600 or 0700;
/// elsewhere the owner is the current user, and the access list allows nothing to others but the system and the
/// administrators.
bool isPrivate(const std::filesystem::path& path);

/// Let every user read, or read and write, the file or the folder. Throw if that is not possible.
void letEverybodyRead(const std::filesystem::path& path);
void letEverybodyWrite(const std::filesystem::path& path);
/// Undoes the calls above: only the owner can access it.
void makePrivate(const std::filesystem::path& path);

} // namespace testing_host
