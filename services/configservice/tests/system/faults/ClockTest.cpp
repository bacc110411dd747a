#include "FaultySession.h"

#include <JumpingClock.h>

namespace ZelUnified {

namespace fs = std::filesystem;

namespace {

using Days = std::chrono::duration<int, std::ratio<86400>>;

} // namespace

/// Sets the clock between two runs and during a run; the parameter is in days.
class WallClock : public testing::TestWithParam<int> {};

TEST_P(WallClock, DoesNotAffectWhichFilesAreReadAndWritten) {
    const Days jump(GetParam());
    testing_host::JumpingClock clock;
    FaultySession session;
    session.useRealDisk();
    session.leaveFiles();
    session.loadAndStart();
    // The backup keeps "old". If the clock goes back, its time is the newer one.
    clock.jump(jump);
    session.adapter->setConfig(L"k", L"new");
    session.persist();
    session.unload();
    const auto timeOfBackup = fs::last_write_time(session.file(backupFile));
    fs::last_write_time(session.file(mainFile), timeOfBackup + jump);
    session.restart();
    EXPECT_EQ(session.valueOf(L"k"), L"new");
    EXPECT_EQ(session.valueOf(L"d"), L"old");
    changeAll(session, L"newer");
    clock.jump(jump);
    changeAll(session, L"newest");
    expectAtTheNextStart(session, L"newest");
    for (const auto* name : {mainFile, backupFile}) {
        EXPECT_THAT(FaultySession::clearTextOf(session.file(name)), testing::HasSubstr("newest"));
    }
}

INSTANTIATE_TEST_SUITE_P(Days, WallClock, testing::Values(-400, -1, 1, 400));

} // namespace ZelUnified
