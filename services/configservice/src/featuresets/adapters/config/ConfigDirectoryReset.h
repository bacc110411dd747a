#pragma once

#include <string>

namespace ZelUnified {

/// Deletes all files in the directory and its subdirectories, except the four that a reset keeps, and logs each result.
/// Does not delete directories and does not follow links to directories.
void removeFilesFromDirectory(const std::string& directory);

} // namespace ZelUnified
