#pragma once

#include <filesystem>

namespace testing_host {

/// Returns true if only the owner can access the file or folder. Where files have modes, that is 0600 or 0700;
/// elsewhere the owner is the current user, and the access list allows nothing to others but the system.
bool isPrivate(const std::filesystem::path& path);

} // namespace testing_host
