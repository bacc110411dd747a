#include "FaultySession.h"

#include <SmallDisk.h>

#include <cerrno>

namespace ZelUnified {

using testing::HasSubstr;

/// What the other tests of this program feign, from the system itself.
class RealDisk : public testing::Test {
protected:
    void SetUp() override {
        if (!disk.getObstacle().empty()) {
            GTEST_SKIP() << "this machine lets the test mount nothing: " << disk.getObstacle();
        }
        FaultySession::useRealDisk();
        session.leaveFiles();
    }
    void TearDown() override { session.unload(); }

    void expectNotWritten(int error) {
        for (const std::string name : {mainFile, "cachedDownloaded.dat", "cachedUrlProvisioningConfigStore.dat"}) {
            EXPECT_TRUE(session.isLogged("Protected file not written, " + name + ": error " + std::to_string(error)))
                << name;
        }
        EXPECT_THAT(FaultySession::clearTextOf(session.file(mainFile)), HasSubstr("old"));
        EXPECT_THAT(FaultySession::clearTextOf(session.file(backupFile)), HasSubstr("old"));
    }

    FaultySession session;
    testing_host::SmallDisk disk{session.profile.config(), std::size_t{128} << 10};
};

TEST_F(RealDisk, FullOneKeepsItsFilesAndTakesChangesWhenThereIsRoomAgain) {
    disk.fill();
    session.restart();
    changeAll(session, L"new");
    expectNotWritten(ENOSPC);
    session.unload();
    disk.empty();
    expectAtTheNextStart(session, L"old");
    changeAll(session, L"newest");
    expectAtTheNextStart(session, L"newest");
}

TEST_F(RealDisk, ReadOnlyOneServesItsFilesAndTakesChangesWhenItIsWritableAgain) {
    ASSERT_TRUE(disk.setReadOnly(true));
    session.restart();
    EXPECT_EQ(session.valueOf(L"k"), L"old");
    changeAll(session, L"new");
    expectNotWritten(EROFS);
    session.unload();
    ASSERT_TRUE(disk.setReadOnly(false));
    expectAtTheNextStart(session, L"old");
    changeAll(session, L"newest");
    expectAtTheNextStart(session, L"newest");
}

} // namespace ZelUnified
