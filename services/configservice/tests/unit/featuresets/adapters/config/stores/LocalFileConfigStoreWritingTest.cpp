#include "LocalFileWritingFixture.h"
#include "featuresets/adapters/config/xml/XmlTestSupport.h"

#include <zel/ZelLog.h>

#include <FaultInjectingFileLayer.h>
#include <PrivateFiles.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using xml_test::localDocument;
using xml_test::readProtected;
using xml_test::valueOf;
using ZelUnified::LocalFileConfigStore;

namespace {

namespace fs = std::filesystem;

class LocalFileConfigStoreWritingTest : public xml_test::LocalFileWritingFixture {};

} // namespace

TEST_F(LocalFileConfigStoreWritingTest, WritesTheMainFileImmediatelyAndTheBackupLater) {
    EXPECT_TRUE(store->storeValue(L"Key", L"v"));
    EXPECT_FALSE(fs::exists(main));
    store->persistValues();
    EXPECT_EQ(readProtected(main), document);
    EXPECT_FALSE(fs::exists(backup));
    ASSERT_EQ(timer->requests.size(), 1U);
    EXPECT_EQ(timer->requests[0].callback->getFileName(), backupName);
    EXPECT_EQ(timer->requests[0].milliseconds, 30000);
    store->storeValue(L"Key", L"w");
    fireBackup();
    EXPECT_EQ(readProtected(backup), localDocument(" <userConfig name=\"Key\" value=\"w\"/>\n"));
    EXPECT_THAT(errors(), IsEmpty());
    EXPECT_TRUE(log.mentions(std::string("About to cache file: ") + backupName));
}

TEST_F(LocalFileConfigStoreWritingTest, TheNextRunReadsItsKeysInLowerCase) {
    store->storeValue(L"Key", L" V ");
    store->persistValues();
    LocalFileConfigStore next(userName, 20, false);
    EXPECT_THAT(next.getKeys(), ElementsAre(L"key"));
    EXPECT_EQ(valueOf(next, L"KEY"), L" V ");
}

TEST_F(LocalFileConfigStoreWritingTest, CreatesFolderAndFileAccessibleToTheirOwnerOnly) {
    fs::remove(profile.config());
    store->storeValue(L"Key", L"planted secret");
    store->persistValues();
    EXPECT_TRUE(testing_host::isPrivate(profile.config()));
    EXPECT_TRUE(testing_host::isPrivate(main));
    EXPECT_EQ(testing_host::readFile(main).find("planted"), std::string::npos);
    EXPECT_FALSE(log.mentions("planted"));
}

TEST_F(LocalFileConfigStoreWritingTest, LogsALineAndWritesNothingIfNothingChanged) {
    store->storeValue(L"Key", L"v");
    store->persistValues();
    fs::remove(main);
    log.clear();
    store->persistValues();
    EXPECT_FALSE(fs::exists(main));
    EXPECT_EQ(timer->requests.size(), 1U);
    EXPECT_THAT(log.getTexts("ConfigService-LocalFileConfigStore"), ElementsAre("Same content has been saved."));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Debug), ElementsAre("Same content has been saved."));
}

TEST_F(LocalFileConfigStoreWritingTest, AValueInAnotherCaseIsAChangeAndKeepsTheKeysFirstSpelling) {
    store->storeValue(L"Key", L"v");
    store->persistValues();
    store->storeValue(L"KEY", L"V");
    EXPECT_THAT(store->getKeys(), ElementsAre(L"Key"));
    store->persistValues();
    EXPECT_EQ(readProtected(main), localDocument(" <userConfig name=\"Key\" value=\"V\"/>\n"));
}

TEST_F(LocalFileConfigStoreWritingTest, AKeyStoredAgainInAnotherCaseIsAChange) {
    store->storeValue(L"Key", L"v");
    store->persistValues();
    EXPECT_TRUE(store->removeValue(L"KEY"));
    store->storeValue(L"KEY", L"v");
    store->persistValues();
    EXPECT_THAT(readProtected(main), HasSubstr("name=\"KEY\""));
}

TEST_F(LocalFileConfigStoreWritingTest, WritesTheEmptyDocumentAfterAllIsRemoved) {
    store->storeValue(L"Key", L"v");
    store->persistValues();
    store->removeAllValues();
    EXPECT_THAT(store->getKeys(), IsEmpty());
    EXPECT_EQ(readProtected(main), document);
    store->persistValues();
    EXPECT_EQ(readProtected(main), localDocument(""));
}

TEST_F(LocalFileConfigStoreWritingTest, DoesNotWriteAnEmptyTableRightAfterALoad) {
    store->storeValue(L"Key", L"v");
    store->persistValues();
    LocalFileConfigStore next(userName, 20, false);
    EXPECT_TRUE(next.removeValue(L"Key"));
    next.persistValues();
    EXPECT_EQ(readProtected(main), document);
}

TEST_F(LocalFileConfigStoreWritingTest, WritesALoadedTableOnce) {
    store->storeValue(L"key", L"v");
    store->persistValues();
    LocalFileConfigStore next(userName, 20, false);
    fs::remove(main);
    next.persistValues();
    EXPECT_TRUE(fs::exists(main));
    fs::remove(main);
    next.persistValues();
    EXPECT_FALSE(fs::exists(main));
}

TEST_F(LocalFileConfigStoreWritingTest, StoresTheOldVoicemailKeyUnderItsNewName) {
    LocalFileConfigStore defaults("lumora-config-defaults.xml", 20, false);
    for (auto* tested : {store.get(), &defaults}) {
        tested->storeValue(L"vvm_mailstore_SERVER_0", L"v");
        EXPECT_EQ(valueOf(*tested, L"VoicemailPrimaryServer"), L"v");
        EXPECT_EQ(valueOf(*tested, L"VVM_Mailstore_Server_0"), L"(none)");
        EXPECT_FALSE(tested->removeValue(L"VVM_Mailstore_Server_0"));
        EXPECT_TRUE(tested->removeValue(L"voicemailprimaryserver"));
    }
}

TEST_F(LocalFileConfigStoreWritingTest, TheHostReportsAFailedWriteAndTheNextChangeWritesAgain) {
    fs::remove(profile.config());
    testing_host::writeFile(profile.config(), "a file is in the way");
    store->storeValue(L"Key", L"w");
    log.clear();
    store->persistValues();
    EXPECT_THAT(log.getTexts("ConfigService-LocalFileConfigStore"), IsEmpty());
    EXPECT_THAT(errors(), ElementsAre(testing::HasSubstr("Failed to write protected file " + main)));
    fs::remove(profile.config());
    store->persistValues();
    EXPECT_FALSE(fs::exists(main));
    store->storeValue(L"Key", L"v");
    store->persistValues();
    EXPECT_EQ(readProtected(main), document);
}

TEST_F(LocalFileConfigStoreWritingTest, WithoutMemoryForADocumentLogsNothingAndKeepsTheOldFile) {
    store->storeValue(L"Key", L"v");
    store->persistValues();
    store->storeValue(L"Key", L"w");
    log.clear();
    for (const std::size_t limit : {0U, 500U}) { // enough for nothing, and for a buffer but no writer
        const xml_test::XmlMemoryLimit memory(limit);
        store->persistValues();
        EXPECT_EQ(readProtected(main), document) << limit;
        store->storeValue(L"Other", L"x");
    }
    EXPECT_THAT(errors(), IsEmpty());
    EXPECT_THAT(log.getTexts("ConfigService-LocalFileConfigStore"), IsEmpty());
    store->storeValue(L"Other", L"y");
    store->persistValues();
    EXPECT_THAT(readProtected(main), HasSubstr("name=\"Other\" value=\"y\""));
}

TEST_F(LocalFileConfigStoreWritingTest, WritesNothingAfterDestroy) {
    store->storeValue(L"Key", L"v");
    store->persistValues();
    fireBackup();
    const std::string before = testing_host::readFile(main);
    const std::string backupBefore = testing_host::readFile(backup);
    store->destroy();
    store->storeValue(L"Key", L"w");
    EXPECT_EQ(valueOf(*store, L"Key"), L"w");
    store->persistValues();
    fireBackup();
    EXPECT_EQ(testing_host::readFile(main), before);
    EXPECT_EQ(testing_host::readFile(backup), backupBefore);
}

TEST_F(LocalFileConfigStoreWritingTest, CreatesNoFolderAfterDestroy) {
    fs::remove(profile.config());
    store->destroy();
    store->storeValue(L"Key", L"v");
    store->persistValues();
    EXPECT_FALSE(fs::exists(profile.config()));
}

TEST_F(LocalFileConfigStoreWritingTest, WritesNothingWhenItIsReadOnly) {
    testing_host::writeFile(profile.resources() / "defaults.xml", "<r><userConfig name='k' value='v'/></r>");
    LocalFileConfigStore defaults("defaults.xml", 7, profile.resources().string(), "defaults.xml", true, true, false);
    EXPECT_TRUE(defaults.storeValue(L"k", L"w"));
    EXPECT_EQ(valueOf(defaults, L"k"), L"w");
    defaults.persistValues();
    EXPECT_EQ(std::distance(fs::directory_iterator(profile.resources()), fs::directory_iterator()), 1);
    EXPECT_EQ(testing_host::readFile(profile.resources() / "defaults.xml"), "<r><userConfig name='k' value='v'/></r>");
}

TEST_F(LocalFileConfigStoreWritingTest, ReadersAndChangesProceedDuringAWriteThatCanBeAwaited) {
    const auto keys = std::make_shared<xml_test::GatedKeyProvider>();
    zel::storage::EncryptFileUtils::overrideKeyProvider(keys);
    store->storeValue(L"Key", L"v");
    keys->close();
    std::atomic<bool> written = false;
    bool writtenAfterTheWait = false;
    std::thread writer([&] {
        store->persistValues();
        written = true;
    });
    ASSERT_TRUE(keys->waitForWriter());
    EXPECT_EQ(valueOf(*store, L"Key"), L"v");
    store->storeValue(L"Other", L"w");
    EXPECT_EQ(store->getKeys().size(), 2U);
    store->removeAllValues();
    EXPECT_TRUE(store->getKeys().empty());
    std::thread waiter([&] {
        store->waitForWrite();
        writtenAfterTheWait = !readProtected(main).empty();
    });
    EXPECT_FALSE(written);
    keys->open();
    writer.join();
    waiter.join();
    EXPECT_TRUE(writtenAfterTheWait);
    EXPECT_EQ(readProtected(main), document);
    zel::storage::EncryptFileUtils::overrideKeyProvider(nullptr);
}

TEST_F(LocalFileConfigStoreWritingTest, AWriteNeedsOneSyncOneRenameAndOneSyncOfEachFolder) {
    using Operation = testing_host::FaultInjectingFileLayer::Operation;
    store->storeValue(L"Key", L"v");
    store->persistValues(); // creates the key
    const auto files = std::make_shared<testing_host::FaultInjectingFileLayer>();
    zel::storage::EncryptFileUtils::overrideFileLayer(files);
    store->storeValue(L"Key", L"w");
    store->persistValues();
    zel::storage::EncryptFileUtils::overrideFileLayer(nullptr);
    const auto calls = files->getCalls();
    const auto count = [&calls](Operation operation) { return std::ranges::count(calls, operation); };
    EXPECT_EQ(count(Operation::CreateFile), 1);
    EXPECT_EQ(count(Operation::Sync), 1);
    EXPECT_EQ(count(Operation::Rename), 1);
    EXPECT_EQ(count(Operation::SyncDirectory), 2) << "that of the keys and that of the file";
}

TEST_F(LocalFileConfigStoreWritingTest, SupportsConcurrentReadersAndWriters) {
    const auto keys = std::make_shared<xml_test::GatedKeyProvider>();
    zel::storage::EncryptFileUtils::overrideKeyProvider(keys);
    store->setTimer(nullptr);
    const auto work = [&](wchar_t key) {
        for (int round = 0; round < 20; ++round) {
            store->storeValue(std::wstring(1, key), std::to_wstring(round));
            store->persistValues();
            store->removeValue(L"shared");
            store->storeValue(L"shared", std::wstring(1, key));
            store->getKeys();
        }
    };
    std::thread first(work, L'a');
    std::thread second(work, L'b');
    first.join();
    second.join();
    store->storeValue(L"last", L"1");
    store->persistValues();
    EXPECT_THAT(LocalFileConfigStore(userName, 20, false).getKeys(), ElementsAre(L"a", L"b", L"last", L"shared"));
    zel::storage::EncryptFileUtils::overrideKeyProvider(nullptr);
}
