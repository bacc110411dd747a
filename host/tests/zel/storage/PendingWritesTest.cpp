#include "zel/storage/PendingWrites.h"

#include "LogRecorder.h"
#include "PlainText.h"
#include "Signal.h"
#include "StorageProfile.h"

#include <kyr/FileUtils.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <string>
#include <thread>

namespace {

using KyrCoreUtils::FileUtils;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing_host::LogRecorder;
using testing_host::namesIn;
using testing_host::PlainText;
using testing_host::writeFile;
using zel::storage::EncryptFileUtils;
using zel::storage::PendingWrites;
using zel::storage::ReadResult;
using zel::storage::FileCategoryType::DeviceData;
using zel::storage::FileCategoryType::FileCategory;
using zel::storage::FileCategoryType::UserData;
using Operation = testing_host::FaultInjectingFileLayer::Operation;

namespace fs = std::filesystem;

/// Tests writes that fail because the disk is full until heal().
struct PendingWritesTest : testing::Test {
    testing_host::StorageProfile storage;
    const std::string path = storage.configFile("settings.dat");

    void SetUp() override {
        ASSERT_TRUE(write("old"));
        storage.layer->setFreeSpace(0);
    }
    void heal() const { storage.layer->heal(); }

    bool write(const std::string& text, FileCategory category = UserData) const {
        return EncryptFileUtils::writeDataToFile(path, PlainText(text), category);
    }
    static std::string read(const std::string& from, FileCategory category = UserData) {
        PlainText content;
        return EncryptFileUtils::readDataFromFile(from, content, category) ? content.text : "";
    }
    std::string read() const { return read(path); }
    std::string onDisk() const {
        PlainText content;
        return EncryptFileUtils::readFromDisk(path, content, UserData) == ReadResult::Ok ? content.text : "";
    }
    static bool retry() { return EncryptFileUtils::retryPendingWrites(); }
};

TEST_F(PendingWritesTest, AFailedWriteLogsAnErrorWithPathAndCause) {
    const LogRecorder log;
    EXPECT_FALSE(write("new"));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error),
                ElementsAre("Failed to write protected file " + path +
                            ": No space left on device; the content is kept and will be written again"));
}

TEST_F(PendingWritesTest, TheErrorNamesEachCause) {
    heal();
    const LogRecorder log;
    const auto causeAfter = [&](const auto& fault) {
        log.getRecords();
        fault();
        EXPECT_FALSE(write("new"));
        heal();
        return log.getTexts(ZelLogLevel::Error).back();
    };
    EXPECT_THAT(causeAfter([&] { storage.layer->failAt(Operation::Rename, 1, EROFS); }),
                HasSubstr(": Read-only file system"));
    EXPECT_THAT(causeAfter([&] { storage.layer->failAt(Operation::SyncDirectory, 1, EIO); }),
                HasSubstr(": the key can't be read or made"))
        << "the sync of the keys' folder";
    EXPECT_THAT(causeAfter([&] { storage.layer->failAt(Operation::SyncDirectory, 2, EIO); }),
                HasSubstr(": Input/output error"));
    writeFile(path, "rubbish");
    EXPECT_THAT(causeAfter([&] { storage.layer->failAt(Operation::Link, 1, EACCES); }),
                HasSubstr(": the unreadable file in its place can't be kept: Permission denied"));
    fs::remove_all(storage.keys());
    EXPECT_THAT(causeAfter([&] { storage.layer->failAt(Operation::LockDirectory, 1, ETIMEDOUT); }),
                HasSubstr(": another process locks the keys"));
    EXPECT_THAT(causeAfter([&] { storage.layer->failAt(Operation::CreateDirectory, 1, EIO); }),
                HasSubstr(": the key can't be read or made"));
}

TEST_F(PendingWritesTest, ReadsReturnTheKeptContentUntilItIsWritten) {
    EXPECT_FALSE(write("new"));
    EXPECT_EQ(read(), "new");
    EXPECT_EQ(read(storage.configFile("settings.xml")), "new") << "the logical name";
    EXPECT_EQ(onDisk(), "old");
    EXPECT_EQ(read(path, DeviceData), "") << "it belongs to another category";
    heal();
    EXPECT_TRUE(retry());
    EXPECT_EQ(onDisk(), "new");
    writeFile(path, "rubbish");
    EXPECT_EQ(read(), "") << "no content is kept";
}

TEST_F(PendingWritesTest, TheKeptContentIsACopyOfTheProtectedText) {
    PlainText content("new");
    EXPECT_FALSE(EncryptFileUtils::writeDataToFile(path, content, UserData));
    content.text = "changed later";
    EXPECT_EQ(read(), "new");
}

TEST_F(PendingWritesTest, ARetryWritesTheKeptContentOnce) {
    EXPECT_FALSE(write("new"));
    EXPECT_FALSE(retry()) << "the disk is still full";
    EXPECT_EQ(read(), "new");
    heal();
    EXPECT_TRUE(retry());
    const auto calls = storage.layer->getCalls().size();
    EXPECT_TRUE(retry());
    EXPECT_EQ(storage.layer->getCalls().size(), calls);
}

TEST_F(PendingWritesTest, ALastingFailureAndItsRecoveryAreLoggedOnce) {
    EXPECT_FALSE(write("new"));
    const LogRecorder log;
    EXPECT_FALSE(retry());
    EXPECT_FALSE(retry());
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), IsEmpty());
    storage.layer->failAt(Operation::CreateFile, 1, EROFS);
    EXPECT_FALSE(retry());
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error),
                ElementsAre("Failed again to write protected file " + path + ": Read-only file system"));
    heal();
    EXPECT_TRUE(retry());
    EXPECT_THAT(log.getTexts(ZelLogLevel::Info),
                ElementsAre("Wrote protected file " + path + " after an earlier failure"));
}

TEST_F(PendingWritesTest, ANewerWriteReplacesKeptContentAndIsNeverOverwritten) {
    EXPECT_FALSE(write("new"));
    EXPECT_FALSE(write("newer"));
    EXPECT_EQ(read(), "newer");
    heal();
    EXPECT_TRUE(write("newest"));
    EXPECT_TRUE(retry());
    EXPECT_EQ(onDisk(), "newest");
}

TEST_F(PendingWritesTest, EmptyContentIsRefusedWithoutALogLineAndReplacesNothing) {
    EXPECT_FALSE(write("new"));
    const LogRecorder log(LogRecorder::Debug::On);
    EXPECT_FALSE(write(""));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error), IsEmpty());
    EXPECT_EQ(read(), "new");
    EXPECT_FALSE(EncryptFileUtils::writeDataToFile(storage.configFile("other.dat"), PlainText(), UserData));
    EXPECT_EQ(EncryptFileUtils::health(storage.profile.config().string()).files.size(), 1U);
    heal();
    EXPECT_TRUE(retry());
    EXPECT_EQ(onDisk(), "new");
    EXPECT_FALSE(write(""));
    EXPECT_EQ(onDisk(), "new");
}

TEST_F(PendingWritesTest, RemovingTheFileDropsKeptContent) {
    EXPECT_FALSE(write("new"));
    EXPECT_EQ(FileUtils::removeFile(path), 0);
    heal();
    EXPECT_TRUE(retry());
    EXPECT_THAT(namesIn(storage.profile.config()), IsEmpty());
    EXPECT_EQ(read(), "");
}

TEST_F(PendingWritesTest, AFileThatExistsOnlyAsKeptContentIsReportedUntilItIsRemoved) {
    const std::string never = storage.configFile("never.dat");
    EXPECT_FALSE(EncryptFileUtils::writeDataToFile(never, PlainText("new"), UserData));
    EXPECT_TRUE(FileUtils::fileExists(never));
    // Another spelling of the same path.
    EXPECT_EQ(FileUtils::removeFile(storage.profile.root().string() + "/./config/../config/never.dat"), 0);
    EXPECT_FALSE(FileUtils::fileExists(never));
    EXPECT_EQ(FileUtils::removeFile(never), ENOENT);
    heal();
    EXPECT_TRUE(retry());
    EXPECT_FALSE(fs::exists(never));
}

TEST_F(PendingWritesTest, MovingTheFileDropsKeptContentOfBothPaths) {
    const std::string target = storage.configFile("target.dat");
    EXPECT_FALSE(write("new"));
    EXPECT_FALSE(EncryptFileUtils::writeDataToFile(target, PlainText("of the target"), UserData));
    EXPECT_EQ(FileUtils::moveFile(path, target, false), 0);
    EXPECT_EQ(read(target), "old");
    heal();
    EXPECT_TRUE(retry());
    EXPECT_THAT(namesIn(storage.profile.config()), ElementsAre("target.dat"));
    EXPECT_EQ(read(target), "old");
}

TEST_F(PendingWritesTest, AFailedMoveKeepsTheContent) {
    EXPECT_FALSE(write("new"));
    EXPECT_NE(FileUtils::moveFile(path, storage.configFile("none/target.dat"), false), 0);
    fs::create_directory(storage.configFile("directory.dat"));
    EXPECT_EQ(FileUtils::moveFile(path, storage.configFile("directory.dat"), false), EISDIR);
    EXPECT_EQ(read(), "new");
}

TEST_F(PendingWritesTest, DroppingACategoryKeepsTheOther) {
    const std::string device = storage.configFile("cachedUrlProvisioningConfigStore.dat");
    EXPECT_FALSE(write("new"));
    EXPECT_FALSE(EncryptFileUtils::writeDataToFile(device, PlainText("link"), DeviceData));
    PendingWrites::instance().drop(UserData);
    EXPECT_EQ(read(), "old");
    EXPECT_EQ(read(device, DeviceData), "link");
}

TEST_F(PendingWritesTest, GivingUpADirectoryLogsItsLostContent) {
    const std::string elsewhere = (storage.profile.data() / "other.dat").string();
    EXPECT_FALSE(write("new"));
    EXPECT_FALSE(EncryptFileUtils::writeDataToFile(elsewhere, PlainText("kept"), UserData));
    const LogRecorder log;
    PendingWrites::instance().giveUp(storage.profile.config().string() + "/");
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error),
                ElementsAre("Lost the content of protected file " + path + ", not written: No space left on device"));
    EXPECT_EQ(read(), "old");
    EXPECT_EQ(read(elsewhere), "kept");
    PendingWrites::instance().giveUp("");
    EXPECT_EQ(read(elsewhere), "");
}

TEST_F(PendingWritesTest, HealthReportsTheLastWriteAndPendingContent) {
    const auto before = std::chrono::system_clock::now();
    EXPECT_FALSE(write("new"));
    const auto failed = EncryptFileUtils::health(storage.profile.config().string()).files;
    ASSERT_EQ(failed.size(), 1U);
    EXPECT_EQ(failed[0].path, path);
    EXPECT_EQ(failed[0].state, ReadResult::Ok) << "the old file";
    EXPECT_TRUE(failed[0].pending);
    ASSERT_TRUE(failed[0].lastWrite);
    EXPECT_FALSE(failed[0].lastWrite->succeeded);
    EXPECT_EQ(failed[0].lastWrite->cause, "No space left on device");
    EXPECT_GE(failed[0].lastWrite->time, before);
    heal();
    EXPECT_TRUE(retry());
    const auto written = EncryptFileUtils::health(storage.profile.config().string()).files;
    ASSERT_EQ(written.size(), 1U);
    EXPECT_FALSE(written[0].pending);
    ASSERT_TRUE(written[0].lastWrite);
    EXPECT_TRUE(written[0].lastWrite->succeeded);
    EXPECT_EQ(written[0].lastWrite->cause, "");
}

TEST_F(PendingWritesTest, RetriesKeepAnUnreadableFileOnce) {
    heal();
    writeFile(path, "rubbish");
    for (int i = 0; i < 3; ++i) {
        storage.layer->setFreeSpace(0);
        EXPECT_FALSE(i == 0 ? write("new") : retry());
        heal();
    }
    EXPECT_TRUE(retry());
    EXPECT_THAT(namesIn(storage.profile.config()), ElementsAre("settings.dat", "settings.dat.unreadable"));
    EXPECT_EQ(onDisk(), "new");
}

TEST_F(PendingWritesTest, ContentThatCannotBeCopiedIsDroppedAndLogged) {
    class Uncopied final : public zel::storage::ProtectedText {
    public:
        bool isEmpty() const override { return false; }
        void setContent(const char*, std::size_t) override {}
        void withClearText(const std::function<void(std::string_view)>& use) const override { use("new"); }
        std::shared_ptr<const ProtectedText> copy() const override { throw std::bad_alloc(); }
    };
    const LogRecorder log;
    EXPECT_FALSE(EncryptFileUtils::writeDataToFile(path, Uncopied(), UserData));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error),
                ElementsAre(AllOf(HasSubstr("No space left"), HasSubstr("; the content is not kept"))));
    EXPECT_EQ(read(), "old");
    EXPECT_FALSE(write("older"));
    EXPECT_FALSE(EncryptFileUtils::writeDataToFile(path, Uncopied(), UserData));
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error).back(), HasSubstr("; the content is not kept"));
    EXPECT_EQ(read(), "older") << "newer than the content on the disk";
}

TEST_F(PendingWritesTest, KeptContentThatIsPutBackDoesNotReplaceANewerWrite) {
    auto& writes = PendingWrites::instance();
    EXPECT_FALSE(write("new"));
    const auto taken = writes.extract(path);
    EXPECT_EQ(read(), "old");
    writes.putBack(taken);
    EXPECT_EQ(read(), "new");
    const auto again = writes.extract(path);
    EXPECT_FALSE(write("newer"));
    writes.putBack(again);
    EXPECT_EQ(read(), "newer");
}

TEST_F(PendingWritesTest, RemovingTheFileWaitsForARunningWrite) {
    auto& writes = PendingWrites::instance();
    testing_host::Signal begun;
    testing_host::Signal removed;
    std::thread writer([&] {
        writes.write(path, PlainText("new"), UserData, [&](const auto&, const auto&, FileCategory) {
            begun.set();
            EXPECT_FALSE(removed.waitFor(std::chrono::milliseconds(100))) << "the removal did not wait";
            return std::string("full");
        });
    });
    ASSERT_TRUE(begun.wait());
    EXPECT_EQ(FileUtils::removeFile(path), 0);
    removed.set();
    writer.join();
    EXPECT_TRUE(writes.isEmpty());
    EXPECT_FALSE(FileUtils::fileExists(path));
}

TEST_F(PendingWritesTest, ReplacingTheFileLayerDropsKeptContent) {
    EXPECT_FALSE(write("new"));
    EncryptFileUtils::overrideFileLayer(storage.layer);
    EXPECT_EQ(read(), "old");
    EXPECT_FALSE(EncryptFileUtils::health(storage.profile.config().string()).files.at(0).lastWrite);
    EXPECT_TRUE(PendingWrites::instance().isEmpty());
}

} // namespace
