#include "FaultySession.h"

#include <zel/EncryptFileUtils.h>

#include <filesystem>

namespace ZelUnified {

using testing::HasSubstr;
using zel::storage::EncryptFileUtils;

namespace fs = std::filesystem;

/// The effects on the service of failed writes that are kept.
class KeptWrites : public testing::Test {
protected:
    void SetUp() override {
        session.leaveFiles();
        session.loadAndStart();
    }
    std::string userFile() const { return FaultySession::clearTextOf(session.file(mainFile)); }

    FaultySession session;
};

TEST_F(KeptWrites, ARefreshWhileTheDiskIsFullDoesNotLoadTheOldFile) {
    session.layer->setFreeSpace(0);
    session.adapter->setConfig(L"k", L"new");
    session.persist();
    session.adapter->refreshConfigFeatureSet();
    EXPECT_EQ(session.valueOf(L"k"), L"new");
    EXPECT_THAT(userFile(), HasSubstr("old"));
}

TEST_F(KeptWrites, ATemporarilyFullDiskLosesNoChange) {
    session.layer->setFreeSpace(0);
    changeAll(session, L"new");
    session.layer->heal();
    EXPECT_TRUE(EncryptFileUtils::retryPendingWrites());
    expectAtTheNextStart(session, L"new");
    EXPECT_THAT(FaultySession::clearTextOf(session.file(backupFile)), HasSubstr("new"));
}

TEST_F(KeptWrites, RemovingAStoreDropsItsUnwrittenCopy) {
    const std::string name = "Fresh";
    session.layer->setFreeSpace(0);
    session.adapter->addConfigStore(FaultySession::makeCachingStore(name, 40, {{L"f", L"v"}}));
    session.persist();
    EXPECT_FALSE(fs::exists(session.cacheFile(name)));
    EXPECT_TRUE(session.adapter->removeConfigStore(name));
    session.layer->heal();
    EXPECT_TRUE(EncryptFileUtils::retryPendingWrites());
    EXPECT_FALSE(fs::exists(session.cacheFile(name)));
}

TEST_F(KeptWrites, AWriteAfterAPowerDownDoesNotReplaceAKeptOne) {
    session.layer->setFreeSpace(0);
    session.adapter->setConfig(L"k", L"new");
    session.persist();
    session.adapter->Destroy();
    session.adapter->setConfig(L"k", L"after the end");
    session.persist();
    session.layer->heal();
    EXPECT_TRUE(EncryptFileUtils::retryPendingWrites());
    EXPECT_THAT(userFile(), HasSubstr("new"));
}

TEST_F(KeptWrites, ADamagedBackupMovedAsideDoesNotPreventTheFirstWrite) {
    session.unload();
    testing_host::writeFile(session.file(backupFile), "rubbish");
    EXPECT_EQ(EncryptFileUtils::moveAsideUnusable(session.profile.config().string()).size(), 1U);
    session.loadAndStart();
    session.adapter->setConfig(L"k", L"new");
    session.persist();
    EXPECT_THAT(userFile(), HasSubstr("new"));
}

} // namespace ZelUnified
