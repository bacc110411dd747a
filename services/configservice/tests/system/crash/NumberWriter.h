#pragma once

#include <cstdint>

namespace crash_test {

enum class Disk { Healthy, Fills };

/// Runs the user's store in the folders of the profile. Writes one number after another with backups between them, and
/// reports to `pipeEnd` what an independent reader finds in the file. Never returns.
void writeNumbers(int pipeEnd, Disk disk, std::uint32_t seed);

} // namespace crash_test
