#pragma once

#include <filesystem>
#include <string>

namespace program_test {

/// Returns a text that differs after each change of the file or folder: its kind, its times, its content and what else
/// the platform records. A link is not followed.
std::string describeFile(const std::filesystem::path& path);

} // namespace program_test
