#pragma once

#include <string>

namespace ZelUnified {

/// Deletes every file at and below the directory but the four that outlive a reset, and logs what became of each.
/// Folders stay, and linked ones are not entered.
void removeFilesFromDirectory(const std::string& directory);

} // namespace ZelUnified
