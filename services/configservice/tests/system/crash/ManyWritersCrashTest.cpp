#include "CrashRounds.h"
#include "KilledProcess.h"
#include "ManyWriters.h"

#include <InMemoryRegistry.h>
#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <iostream>
#include <random>
#include <string>

using crash_test::KilledProcess;
using crash_test::Report;
using crash_test::WrittenFile;

namespace {

/// Uses one profile in many processes that write all of its files concurrently, each of which is killed.
class ManyWritersCrashTest : public testing::Test {
protected:
    /// Starts with every file on the disk.
    void SetUp() override {
        while (!HasFailure() && std::ranges::find(holds, 0U) != holds.end()) {
            playProcess(50, std::chrono::microseconds(0));
        }
    }

    void playProcess(std::size_t reports, std::chrono::microseconds delay) {
        KilledProcess process(crash_test::writeWithManyThreads);
        const auto told = process.killAfter(reports, delay);
        EXPECT_TRUE(process.wasKilled()) << "the child ended without being killed";
        for (const Report& report : told) {
            auto& held = holds.at(report.file);
            EXPECT_NE(report.kind, Report::Kind::Lost) << "of file " << report.file;
            EXPECT_GE(report.number, held) << "file " << report.file << " is older than what was on the disk";
            // A backup that is found may be newer than the main file, from which the next backup is written.
            const bool isWritten = report.kind == Report::Kind::File;
            if (isWritten || report.file != static_cast<std::uint32_t>(WrittenFile::Backup)) {
                held = report.number;
            }
            ++counts.at(report.kind == Report::Kind::LoadedFile ? 0 : 1);
        }
    }

    const testing_host::TemporaryProfile profile;
    const testing_host::InMemoryRegistry::Installed registry;
    const unsigned long seed = crash_test::chooseSeed();
    std::mt19937 random{static_cast<std::uint32_t>(seed)};
    std::array<std::uint32_t, crash_test::writtenFiles> holds{}; ///< The known content of each file.
    std::array<unsigned long, 2> counts{};                       ///< The number of loaded files and of written files.
};

TEST_F(ManyWritersCrashTest, TheNextProcessReadsTheLastContentOfEachFile) {
    SCOPED_TRACE("LUMORA_CRASH_SEED=" + std::to_string(seed));
    const unsigned long rounds = crash_test::countRounds();
    for (unsigned long round = 0; round < rounds && !HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        playProcess(random() % 20, std::chrono::microseconds(random() % 5000));
    }
    std::cout << "seed " << seed << ", " << rounds << " kills, " << counts[0] << " files loaded, " << counts[1]
              << " written\n";
    EXPECT_GT(counts[0], rounds);
    EXPECT_GT(counts[1], rounds);
}

} // namespace
