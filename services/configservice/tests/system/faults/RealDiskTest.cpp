#include "FaultySession.h"

#include <SmallDisk.h>

namespace ZelUnified {

using testing::HasSubstr;

/// Uses a real file system for the faults that the other tests of this program simulate.
class RealDisk : public testing::Test {
protected:
    void SetUp() override {
        if (!disk.getObstacle().empty()) {
            GTEST_SKIP() << "this machine does not permit mounting: " << disk.getObstacle();
        }
        session.useRealDisk();
        session.leaveFiles();
    }
    void TearDown() override { session.unload(); }

    void expectNotWritten(const std::string& cause) {
        for (const std::string name :
             {mainFile, "Cache/cachedDownloaded.dat", "Cache/cachedUrlProvisioningConfigStore.dat"}) {
            EXPECT_TRUE(
                session.isLogged("Failed to write protected file " + session.file(name).string() + ": " + cause))
                << name;
        }
        EXPECT_THAT(FaultySession::clearTextOf(session.file(mainFile)), HasSubstr("old"));
        EXPECT_THAT(FaultySession::clearTextOf(session.file(backupFile)), HasSubstr("old"));
    }

    FaultySession session;
    testing_host::SmallDisk disk{session.profile.config(), std::size_t{128} << 10};
};

TEST_F(RealDisk, AFullDiskKeepsItsFilesAndIsWrittenOnceItHasSpace) {
    disk.fill();
    session.restart();
    changeAll(session, L"new");
    expectNotWritten("No space left on device");
    session.unload();
    disk.empty();
    expectAtTheNextStart(session, L"old");
    changeAll(session, L"newest");
    expectAtTheNextStart(session, L"newest");
}

TEST_F(RealDisk, AReadOnlyDiskIsReadAndIsWrittenOnceItIsWritable) {
    ASSERT_TRUE(disk.setReadOnly(true));
    session.restart();
    EXPECT_EQ(session.valueOf(L"k"), L"old");
    changeAll(session, L"new");
    expectNotWritten("Read-only file system");
    session.unload();
    ASSERT_TRUE(disk.setReadOnly(false));
    expectAtTheNextStart(session, L"old");
    changeAll(session, L"newest");
    expectAtTheNextStart(session, L"newest");
}

} // namespace ZelUnified
