#pragma once

#include <cstdint>

namespace crash_test {

/// The files that are written at once.
enum class WrittenFile : std::uint32_t { Main, Backup, FirstCopy, SecondCopy, Provisioning };
constexpr std::uint32_t writtenFiles = 5;

/// Runs the whole service in the folders of the profile, with a thread each for the user's settings, two documents that
/// are downloaded again and again, and provisioning links. Reports to `pipeEnd` what it began with, and what a reader
/// of its own finds in each file after a write. Never returns.
void writeWithManyThreads(int pipeEnd);

} // namespace crash_test
