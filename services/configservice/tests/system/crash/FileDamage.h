#pragma once

#include <filesystem>
#include <random>

namespace crash_test {

/// Flips, truncates or zeroes random bytes of the file. The content differs afterwards. The file must exist and not be
/// empty.
void damage(const std::filesystem::path& path, std::mt19937& random);

} // namespace crash_test
