#pragma once

#include <cstdint>

namespace crash_test {

/// The files that are written concurrently.
enum class WrittenFile : std::uint32_t { Main, Backup, FirstCopy, SecondCopy, Provisioning };
constexpr std::uint32_t writtenFiles = 5;

/// Runs the whole service in the folders of the profile, with one thread each for the user's settings, two documents
/// that are downloaded repeatedly, and provisioning links. Reports to `pipeEnd` the initial content of each file, and
/// what an independent reader finds in it after each write. Never returns.
void writeWithManyThreads(int pipeEnd);

} // namespace crash_test
