#include "LogRecorder.h"
#include "PlainText.h"
#include "SecondImplementation.h"
#include "StorageProfile.h"
#include "zel/storage/Quarantine.h"

#include <zel/EncryptFileUtils.h>
#include <zel/KeyProvider.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <map>
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
using zel::storage::Quarantine;
using zel::storage::ReadResult;
using zel::storage::FileCategoryType::DeviceData;
using zel::storage::FileCategoryType::FileCategory;
using zel::storage::FileCategoryType::UserData;
using Operation = testing_host::FaultInjectingFileLayer::Operation;

namespace fs = std::filesystem;

/// A profile with a protected file in each of the states.
struct MovedAsideTest : testing::Test {
    testing_host::StorageProfile storage;
    const fs::path config = storage.profile.config();
    const std::string configDirectory = config.string();

    void write(const std::string& name, const std::string& text = "text", FileCategory category = UserData) const {
        ASSERT_TRUE(EncryptFileUtils::writeDataToFile(storage.configFile(name), PlainText(text), category));
    }
    void writeAllStates() const {
        write("wrongkey.dat");
        write("wrongcategory.dat", "text", DeviceData);
        fs::remove(storage.keys() / "cat2.key");
        write("good.dat");
        fs::create_directory(config / "Cache");
        write("Cache/cachedUrlProvisioningConfigStore.dat", "link", DeviceData);
        writeFile(config / "lumoraLocalConfig.dat", "rubbish");
        writeFile(config / "Cache/cachedStore.dat", "");
        writeFile(config / "later.dat", readFile(config / "good.dat").replace(4, 1, "\x02"));
        writeFile(config / "foreign.xml", "rubbish");
    }
    static std::vector<zel::storage::MovedFile> check(const std::string& directory) {
        return EncryptFileUtils::moveAsideUnusable(directory);
    }
};

TEST_F(MovedAsideTest, DamagedEmptyAndWronglyKeyedFilesAreMovedAsideAndReported) {
    writeAllStates();
    const LogRecorder log;
    std::map<std::string, ReadResult> reasons;
    for (const auto& moved : check(configDirectory)) {
        reasons[fs::path(moved.original).filename().string()] = moved.reason;
        EXPECT_EQ(moved.keptAs, moved.original + ".unreadable");
        EXPECT_FALSE(fs::exists(moved.original));
        EXPECT_TRUE(fs::exists(moved.keptAs));
    }
    EXPECT_EQ(reasons, (std::map<std::string, ReadResult>{{"cachedStore.dat", ReadResult::Damaged},
                                                          {"lumoraLocalConfig.dat", ReadResult::Damaged},
                                                          {"wrongcategory.dat", ReadResult::WrongKey},
                                                          {"wrongkey.dat", ReadResult::WrongKey}}));
    EXPECT_EQ(log.getTexts(ZelLogLevel::Warning).size(), 4U);
    EXPECT_TRUE(log.mentions("Moved aside " + storage.configFile("lumoraLocalConfig.dat") +
                             ", which can't be read (too short), as lumoraLocalConfig.dat.unreadable"));
    EXPECT_EQ(EncryptFileUtils::health(configDirectory).movedAside.size(), 4U);
    EXPECT_THAT(EncryptFileUtils::health(storage.profile.data().string()).movedAside, IsEmpty());
    EXPECT_TRUE(fs::exists(config / "good.dat"));
    EXPECT_TRUE(fs::exists(config / "later.dat")) << "of a later version, which can't be opened";
    EXPECT_TRUE(fs::exists(config / "foreign.xml"));
    EXPECT_TRUE(fs::exists(config / "Cache/cachedUrlProvisioningConfigStore.dat"));
}

TEST_F(MovedAsideTest, FilesOfOtherProgramsAreNeitherMovedNorExamined) {
    fs::create_directories(config / "Cache");
    fs::create_directories(config / "other");
    for (const char* name : {"SSOAuthInfoStore.dat", "Cache/other.dat", "other/cachedStore.dat",
                             "other/lumoraLocalConfig.dat", "lumoraLocalConfig_backup.dat.txt"}) {
        writeFile(config / name, "text of another program");
    }
    for (const std::string& root : {configDirectory, configDirectory + "/"}) {
        EXPECT_THAT(check(root), IsEmpty());
        EXPECT_THAT(EncryptFileUtils::health(root).files, IsEmpty());
    }
    EXPECT_EQ(readFile(config / "SSOAuthInfoStore.dat"), "text of another program");
    EXPECT_EQ(readFile(config / "other/lumoraLocalConfig.dat"), "text of another program");
}

TEST_F(MovedAsideTest, ACopyOfAStoreWithSeparatorsInItsNameIsChecked) {
    fs::create_directories(config / "Cache/cachedA");
    writeFile(config / "Cache/cachedA/B.dat", "rubbish");
    EXPECT_EQ(check(configDirectory + "/").size(), 1U);
}

TEST_F(MovedAsideTest, AGoodFileKeepsItsPlaceIfAFolderBearsTheNameOfTheProvisionedStore) {
    const fs::path folder = config / "Cache/cachedUrlProvisioningConfigStore";
    fs::create_directories(folder);
    write("Cache/cachedUrlProvisioningConfigStore/B.dat", "text", DeviceData);
    write("lumoraLocalConfig.dat", "text", UserData);
    EXPECT_THAT(check(configDirectory), IsEmpty());
    fs::rename(config / "lumoraLocalConfig.dat", folder / "lumoraLocalConfig.dat");
    EXPECT_THAT(check(folder.string()), IsEmpty());
}

TEST_F(MovedAsideTest, AnEmptyFileIsMovedAside) {
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

TEST_F(MovedAsideTest, AFileThatCantBeOpenedStays) {
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

TEST_F(MovedAsideTest, AFileWhoseKeyCantBeOpenedStays) {
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

TEST_F(MovedAsideTest, AFileThatCantBeMovedIsReportedAsAnErrorAndStays) {
    writeFile(config / "lumoraLocalConfig.dat", "rubbish");
    storage.layer->failAt(Operation::Rename, 1, EROFS);
    const LogRecorder log;
    EXPECT_THAT(check(configDirectory), IsEmpty());
    EXPECT_THAT(log.getTexts(ZelLogLevel::Error),
                ElementsAre(HasSubstr("lumoraLocalConfig.dat, which can't be read (too short): "
                                      "Read-only file system")));
    EXPECT_EQ(readFile(config / "lumoraLocalConfig.dat"), "rubbish");
}

TEST_F(MovedAsideTest, ATakenNameIsNeverReplaced) {
    writeFile(config / "lumoraLocalConfig.dat.unreadable", "older");
    fs::create_directory(config / "lumoraLocalConfig.dat.unreadable.2");
    writeFile(config / "lumoraLocalConfig.dat", "rubbish");
    ASSERT_EQ(check(configDirectory).size(), 1U);
    EXPECT_THAT(namesIn(config), ElementsAre("lumoraLocalConfig.dat.unreadable", "lumoraLocalConfig.dat.unreadable.2",
                                             "lumoraLocalConfig.dat.unreadable.3"));
    EXPECT_EQ(readFile(config / "lumoraLocalConfig.dat.unreadable"), "older");
    EXPECT_EQ(readFile(config / "lumoraLocalConfig.dat.unreadable.3"), "rubbish");
}

TEST_F(MovedAsideTest, AFileStaysIfTheHighestNumberIsTaken) {
    writeFile(config / "lumoraLocalConfig.dat.unreadable.1000000", "older");
    writeFile(config / "lumoraLocalConfig.dat.unreadable.1000001", "not a kept file");
    writeFile(config / "lumoraLocalConfig.dat", "rubbish");
    EXPECT_THAT(check(configDirectory), IsEmpty());
    EXPECT_EQ(readFile(config / "lumoraLocalConfig.dat"), "rubbish");
    EXPECT_EQ(readFile(config / "lumoraLocalConfig.dat.unreadable.1000001"), "not a kept file");
}

TEST_F(MovedAsideTest, TheNewestFiveAreKeptAndDirectoriesAreLeftAlone) {
    fs::create_directory(config / "lumoraLocalConfig.dat.unreadable.3");
    for (int i = 1; i <= 12; ++i) {
        writeFile(config / "lumoraLocalConfig.dat", "rubbish " + std::to_string(i));
        check(configDirectory);
        if (i == 6) { // replaced in place, as a write does
            writeFile(config / "lumoraLocalConfig.dat", "rubbish while writing");
            write("lumoraLocalConfig.dat");
        }
    }
    EXPECT_THAT(namesIn(config),
                ElementsAre("lumoraLocalConfig.dat.unreadable.12", "lumoraLocalConfig.dat.unreadable.13",
                            "lumoraLocalConfig.dat.unreadable.14", "lumoraLocalConfig.dat.unreadable.15",
                            "lumoraLocalConfig.dat.unreadable.16", "lumoraLocalConfig.dat.unreadable.3"));
    EXPECT_EQ(readFile(config / "lumoraLocalConfig.dat.unreadable.12"), "rubbish 8");
    EXPECT_EQ(readFile(config / "lumoraLocalConfig.dat.unreadable.16"), "rubbish 12");
}

TEST_F(MovedAsideTest, NamesOfKeptFilesAreTakenApartExactly) {
    EXPECT_EQ(Quarantine::parse("/c/a.dat.unreadable").original, "/c/a.dat");
    EXPECT_EQ(Quarantine::parse("/c/a.dat.unreadable").number, 1U);
    EXPECT_EQ(Quarantine::parse("/c/a.dat.unreadable.27").original, "/c/a.dat");
    EXPECT_EQ(Quarantine::parse("/c/a.dat.unreadable.27").number, 27U);
    for (const char* other : {"/c/a.dat", "/c/.unreadable", "/c/a.dat.unreadable.", "/c/a.dat.unreadable.1",
                              "/c/a.dat.unreadable.02", "/c/a.dat.unreadable.2x", "/c/a.dat.unreadable2",
                              "/c/a.dat.unreadable.99999999999999999999", "/c/a.dat.unreadable/b"}) {
        EXPECT_EQ(Quarantine::parse(other).original, "") << other;
    }
}

TEST_F(MovedAsideTest, ListsWhatAnyProcessMovedAsideWithItsPresentState) {
    write("a.dat", "first");
    fs::rename(config / "a.dat", config / "a.dat.unreadable.2");
    writeFile(config / "a.dat.unreadable.10", "rubbish");
    writeFile(config / "notes.unreadable", "not a protected file");
    const auto listed = EncryptFileUtils::listMovedAside(configDirectory);
    ASSERT_EQ(listed.size(), 2U);
    EXPECT_EQ(listed[0].original, storage.configFile("a.dat"));
    EXPECT_EQ(listed[0].keptAs, storage.configFile("a.dat.unreadable.2"));
    EXPECT_EQ(listed[0].state, ReadResult::Ok);
    EXPECT_EQ(listed[1].keptAs, storage.configFile("a.dat.unreadable.10")) << "the newest comes last";
    EXPECT_EQ(listed[1].state, ReadResult::Damaged);
}

TEST_F(MovedAsideTest, RestoringPutsTheFileBackAndKeepsThePresentOne) {
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
    EXPECT_EQ(namesIn(config).size(), 6U) << "the oldest is restored, not removed";
}

TEST_F(MovedAsideTest, RestoringDropsContentThatWaits) {
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

TEST_F(MovedAsideTest, AFailedRestoringLeavesThePresentFileInItsPlaceWithoutLinksToo) {
    write("a.dat", "kept");
    fs::rename(config / "a.dat", config / "a.dat.unreadable");
    write("a.dat", "present");
    storage.layer->failAt(Operation::Link, 1, EPERM);
    storage.layer->failAt(Operation::Rename, 2, EIO); // the present file, then the kept one
    EXPECT_FALSE(EncryptFileUtils::restoreMovedAside(storage.configFile("a.dat.unreadable")).succeeded);
    PlainText content;
    ASSERT_TRUE(EncryptFileUtils::readDataFromFile(storage.configFile("a.dat"), content, UserData));
    EXPECT_EQ(content.text, "present");
    ASSERT_TRUE(EncryptFileUtils::readDataFromFile(storage.configFile("a.dat.unreadable"), content, UserData));
    EXPECT_EQ(content.text, "kept");
}

TEST_F(MovedAsideTest, WhatCantBeReadIsNotRestored) {
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

TEST_F(MovedAsideTest, HealthTellsTheStateOfEachFileOnTheDisk) {
    writeAllStates();
    storage.layer->setFreeSpace(0);
    EXPECT_FALSE(EncryptFileUtils::writeDataToFile(storage.configFile("absent.dat"), PlainText("x"), UserData));
    fs::create_directory(config / "directory");
    fs::create_symlink(config / "directory", config / "lumoraLocalConfig_backup.dat");
    std::map<std::string, ReadResult> states;
    for (const auto& file : EncryptFileUtils::health(configDirectory).files) {
        states[fs::path(file.path).filename().string()] = file.state;
        EXPECT_EQ(file.pending, file.path == storage.configFile("absent.dat"));
    }
    EXPECT_EQ(states, (std::map<std::string, ReadResult>{{"absent.dat", ReadResult::Absent},
                                                         {"cachedStore.dat", ReadResult::Damaged},
                                                         {"cachedUrlProvisioningConfigStore.dat", ReadResult::Ok},
                                                         {"lumoraLocalConfig.dat", ReadResult::Damaged},
                                                         {"good.dat", ReadResult::Ok},
                                                         {"later.dat", ReadResult::Unreadable},
                                                         {"lumoraLocalConfig_backup.dat", ReadResult::Unreadable},
                                                         {"wrongcategory.dat", ReadResult::WrongKey},
                                                         {"wrongkey.dat", ReadResult::WrongKey}}));
    EXPECT_TRUE(fs::exists(config / "lumoraLocalConfig.dat")) << "the query changes nothing";
}

TEST_F(MovedAsideTest, AReplacedUnreadableFileIsReportedToo) {
    writeFile(config / "a.dat", "rubbish");
    write("a.dat");
    const auto moved = EncryptFileUtils::health(configDirectory).movedAside;
    ASSERT_EQ(moved.size(), 1U);
    EXPECT_EQ(moved[0].original, storage.configFile("a.dat"));
    EXPECT_EQ(moved[0].keptAs, storage.configFile("a.dat.unreadable"));
    EXPECT_EQ(moved[0].reason, ReadResult::Damaged);
}

} // namespace
