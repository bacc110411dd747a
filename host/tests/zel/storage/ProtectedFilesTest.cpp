#include "LogRecorder.h"
#include "MovedAsideFixture.h"
#include "SecondImplementation.h"

#include <zel/KeyProvider.h>

#include <gmock/gmock.h>

#include <cerrno>
#include <string>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing_host::LogRecorder;
using testing_host::namesIn;
using testing_host::PlainText;
using testing_host::readFile;
using testing_host::writeFile;
using zel::storage::EncryptFileUtils;
using zel::storage::KeyResult;
using zel::storage::MasterKey;
using zel::storage::ReadResult;
using zel::storage::FileCategoryType::FileCategory;
using zel::storage::FileCategoryType::UserData;
using Operation = testing_host::FaultInjectingFileLayer::Operation;

namespace fs = std::filesystem;

class ProtectedFilesTest : public storage_test::MovedAsideFixture {};

TEST_F(ProtectedFilesTest, AnEmptyFileIsMovedAside) {
    class FixedKey final : public zel::storage::KeyProvider {
    public:
        KeyResult find(FileCategory, MasterKey&) override { return KeyResult::Found; }
        KeyResult findOrMake(FileCategory, MasterKey&) override { return KeyResult::Found; }
    };
    EncryptFileUtils::overrideKeyProvider(std::make_shared<FixedKey>());
    writeFile(config / "empty.dat", testing_host::sealByDescription("", 2, MasterKey()));
    const auto moved = check(configDirectory);
    ASSERT_EQ(moved.size(), 1U);
    EXPECT_EQ(moved[0].reason, ReadResult::Empty);
}

TEST_F(ProtectedFilesTest, AFileThatCannotBeOpenedIsNotMoved) {
    write("lumoraLocalConfig_backup.dat");
    writeFile(config / "lumoraLocalConfig.dat", "rubbish");
    for (const Operation step : {Operation::OpenForReading, Operation::Read}) {
        storage.layer->failAt(step, 1, EACCES); // lumoraLocalConfig.dat is the first
        EXPECT_THAT(check(configDirectory), IsEmpty());
    }
    fs::remove(config / "lumoraLocalConfig.dat");
    fs::create_directory(config / "lumoraLocalConfig.dat");
    EXPECT_THAT(check(configDirectory), IsEmpty());
    EXPECT_THAT(namesIn(config), ElementsAre("lumoraLocalConfig.dat", "lumoraLocalConfig_backup.dat"));
}

TEST_F(ProtectedFilesTest, AFileWhoseKeyCannotBeReadIsNotMoved) {
    write("lumoraLocalConfig_backup.dat");
    fs::rename(storage.keys() / "cat2.key", storage.keys() / "gone");
    EXPECT_THAT(check(configDirectory), IsEmpty()) << "no key";
    writeFile(storage.keys() / "cat2.key", "rubbish");
    EXPECT_THAT(check(configDirectory), IsEmpty()) << "a malformed key";
    fs::remove(storage.keys() / "cat2.key");
    fs::rename(storage.keys() / "gone", storage.keys() / "cat2.key");
    storage.layer->failAt(Operation::OpenForReading, 2, EACCES); // the file, then its key
    EXPECT_THAT(check(configDirectory), IsEmpty()) << "no access to the key";
    EXPECT_THAT(namesIn(config), ElementsAre("lumoraLocalConfig_backup.dat"));
}

TEST_F(ProtectedFilesTest, AFailureToMoveAFileIsLoggedAsAnError) {
    writeFile(config / "lumoraLocalConfig.dat", "rubbish");
    storage.layer->failAt(Operation::Rename, 1, EROFS);
    const LogRecorder log;
    EXPECT_THAT(check(configDirectory), IsEmpty());
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error),
                ElementsAre(HasSubstr("lumoraLocalConfig.dat, which can't be read (too short): "
                                      "Read-only file system")));
    EXPECT_EQ(readFile(config / "lumoraLocalConfig.dat"), "rubbish");
}

TEST_F(ProtectedFilesTest, RestoringReplacesThePresentFileAndMovesItAside) {
    for (int number = 2; number <= 6; ++number) {
        write("a.dat", "kept " + std::to_string(number));
        fs::rename(config / "a.dat", storage.configFile("a.dat.unreadable." + std::to_string(number)));
    }
    write("a.dat", "present");
    EXPECT_TRUE(EncryptFileUtils::restoreMovedAside(storage.configFile("a.dat.unreadable.2")).succeeded);
    PlainText content;
    ASSERT_TRUE(EncryptFileUtils::readDataFromFile(storage.configFile("a.dat"), content, UserData));
    EXPECT_EQ(content.text, "kept 2");
    ASSERT_TRUE(EncryptFileUtils::readDataFromFile(storage.configFile("a.dat.unreadable.7"), content, UserData));
    EXPECT_EQ(content.text, "present");
    EXPECT_EQ(namesIn(config).size(), 6U) << "the oldest file is restored, not removed";
}

TEST_F(ProtectedFilesTest, RestoringDropsPendingContent) {
    write("a.dat", "kept");
    fs::rename(config / "a.dat", config / "a.dat.unreadable");
    storage.layer->setFreeSpace(0);
    EXPECT_FALSE(EncryptFileUtils::writeDataToFile(storage.configFile("a.dat"), PlainText("waits"), UserData));
    storage.layer->heal();
    EXPECT_TRUE(EncryptFileUtils::restoreMovedAside(storage.configFile("a.dat.unreadable")).succeeded);
    EXPECT_TRUE(EncryptFileUtils::retryPendingWrites());
    PlainText content;
    ASSERT_TRUE(EncryptFileUtils::readDataFromFile(storage.configFile("a.dat"), content, UserData));
    EXPECT_EQ(content.text, "kept");
}

TEST_F(ProtectedFilesTest, AFileThatCannotBeReadIsNotRestored) {
    writeFile(config / "a.dat.unreadable", "rubbish");
    write("a.dat", "present");
    storage.layer->setFreeSpace(0);
    EXPECT_FALSE(EncryptFileUtils::writeDataToFile(storage.configFile("a.dat"), PlainText("waits"), UserData));
    const auto outcome = EncryptFileUtils::restoreMovedAside(storage.configFile("a.dat.unreadable"));
    EXPECT_FALSE(outcome.succeeded);
    EXPECT_EQ(outcome.cause, "it can't be read: too short");
    EXPECT_FALSE(EncryptFileUtils::restoreMovedAside(storage.configFile("a.dat")).succeeded);
    PlainText content;
    ASSERT_TRUE(EncryptFileUtils::readDataFromFile(storage.configFile("a.dat"), content, UserData));
    EXPECT_EQ(content.text, "waits");
    EXPECT_THAT(namesIn(config), ElementsAre("a.dat", "a.dat.unreadable"));
}

} // namespace
