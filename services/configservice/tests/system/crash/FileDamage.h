#pragma once

#include <filesystem>
#include <random>

namespace crash_test {

/// Flips, cuts or zeroes bytes of the file at random; it differs afterwards. The file is there and not empty.
void damage(const std::filesystem::path& path, std::mt19937& random);

} // namespace crash_test
