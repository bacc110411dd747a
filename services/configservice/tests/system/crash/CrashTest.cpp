#include "CrashRounds.h"
#include "FileDamage.h"
#include "KilledProcess.h"
#include "NumberWriter.h"

#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

using crash_test::Disk;
using crash_test::KilledProcess;
using crash_test::Report;

namespace {

enum class Disturbance { None, DamagedMain, DamagedBackup, FullDisk };

/// Uses one profile in many processes, each of which is killed.
class CrashTest : public testing::TestWithParam<Disturbance> {
protected:
    /// Starts with both files on the disk.
    void SetUp() override {
        expectGoodRun(runUntilKilled(Disk::Healthy, 20, std::chrono::microseconds(0)));
        ASSERT_GT(mainHolds, 0U);
        ASSERT_GT(backupHolds, 0U);
    }

    std::vector<Report> runUntilKilled(Disk disk, std::size_t reports, std::chrono::microseconds delay) {
        const auto writerSeed = static_cast<std::uint32_t>(random());
        KilledProcess process([&](int pipeEnd) { crash_test::writeNumbers(pipeEnd, disk, writerSeed); });
        auto told = process.killAfter(reports, delay);
        EXPECT_TRUE(process.wasKilled()) << "the child ended without being killed";
        return told;
    }

    void disturb() {
        if (random() % 2 == 0) {
            return;
        }
        // Never damages both files, since then no content would remain to check.
        if (GetParam() == Disturbance::DamagedMain && backupHolds > 0) {
            crash_test::damage(profile.config() / "lumoraLocalConfig.dat", random);
            mainHolds = 0;
        } else if (GetParam() == Disturbance::DamagedBackup && mainHolds > 0) {
            crash_test::damage(profile.config() / "lumoraLocalConfig_backup.dat", random);
            backupHolds = 0;
        }
    }

    void playRound() {
        disturb();
        const Disk disk = GetParam() == Disturbance::FullDisk ? Disk::Fills : Disk::Healthy;
        const std::size_t reports = random() % 6;
        const std::chrono::microseconds delay(random() % 5000);
        expectGoodRun(runUntilKilled(disk, reports, delay));
    }

    void expectGoodRun(const std::vector<Report>& reports) {
        for (const Report& report : reports) {
            switch (report.kind) {
            case Report::Kind::Loaded:
                expectGoodStart(report.number);
                break;
            case Report::Kind::Main:
                mainHolds = report.number;
                ++writes;
                break;
            case Report::Kind::Backup:
                backupHolds = report.number;
                break;
            case Report::Kind::Lost:
                ADD_FAILURE() << "an unexpected write; the file contains " << report.number;
                break;
            case Report::Kind::LoadedFile:
            case Report::Kind::File:
                ADD_FAILURE() << "not one of this process's reports";
                break;
            }
        }
    }

    void expectGoodStart(std::uint32_t loaded) {
        const std::uint32_t onDisk = mainHolds > 0 ? mainHolds : backupHolds;
        EXPECT_GE(loaded, onDisk) << "older than the content on the disk";
        EXPECT_TRUE(loaded > 0 || onDisk == 0) << "empty";
        starts += loaded > 0 ? 1 : 0;
    }

    testing_host::TemporaryProfile profile;
    const unsigned long seed = crash_test::chooseSeed();
    std::mt19937 random{static_cast<std::uint32_t>(seed)};
    /// The last reported numbers; 0 for a damaged file.
    std::uint32_t mainHolds = 0;
    std::uint32_t backupHolds = 0;
    unsigned long writes = 0;
    unsigned long starts = 0;
};

TEST_P(CrashTest, TheNextProcessReadsTheLastContentOnTheDisk) {
    SCOPED_TRACE("LUMORA_CRASH_SEED=" + std::to_string(seed));
    const unsigned long rounds = crash_test::countRounds();
    for (unsigned long round = 0; round < rounds && !HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        playRound();
    }
    std::cout << "seed " << seed << ", " << rounds << " kills, " << starts << " starts, " << writes << " writes\n";
    EXPECT_GT(starts, rounds / 2);
    EXPECT_GT(writes, rounds / 2);
}

std::string nameOf(const testing::TestParamInfo<Disturbance>& info) {
    switch (info.param) {
    case Disturbance::None:
        return "Undisturbed";
    case Disturbance::DamagedMain:
        return "DamagedMain";
    case Disturbance::DamagedBackup:
        return "DamagedBackup";
    default:
        return "FullDisk";
    }
}

INSTANTIATE_TEST_SUITE_P(Disturbances, CrashTest,
                         testing::Values(Disturbance::None, Disturbance::DamagedMain, Disturbance::DamagedBackup,
                                         Disturbance::FullDisk),
                         nameOf);

} // namespace
