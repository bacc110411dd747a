#include "LogRecorder.h"
#include "MovedAsideFixture.h"

#include <gmock/gmock.h>

#include <map>
#include <string>

namespace {

using testing::IsEmpty;
using testing_host::LogRecorder;
using testing_host::PlainText;
using testing_host::readFile;
using testing_host::writeFile;
using zel::storage::EncryptFileUtils;
using zel::storage::ReadResult;
using zel::storage::FileCategoryType::DeviceData;
using zel::storage::FileCategoryType::UserData;

namespace fs = std::filesystem;

class ProtectedFileTreeTest : public storage_test::MovedAsideFixture {};

TEST_F(ProtectedFileTreeTest, DamagedEmptyAndWronglyKeyedFilesAreMovedAsideAndReported) {
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
    EXPECT_TRUE(fs::exists(config / "later.dat")) << "of a later version, which cannot be opened";
    EXPECT_TRUE(fs::exists(config / "foreign.xml"));
    EXPECT_TRUE(fs::exists(config / "Cache/cachedUrlProvisioningConfigStore.dat"));
}

TEST_F(ProtectedFileTreeTest, FilesOfOtherProgramsAreNotMovedOrReported) {
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

TEST_F(ProtectedFileTreeTest, ACopyOfAStoreWithSeparatorsInItsNameIsChecked) {
    fs::create_directories(config / "Cache/cachedA");
    writeFile(config / "Cache/cachedA/B.dat", "rubbish");
    EXPECT_EQ(check(configDirectory + "/").size(), 1U);
}

TEST_F(ProtectedFileTreeTest, AGoodFileIsNotMovedIfAFolderHasTheNameOfTheProvisioningCopy) {
    const fs::path folder = config / "Cache/cachedUrlProvisioningConfigStore";
    fs::create_directories(folder);
    write("Cache/cachedUrlProvisioningConfigStore/B.dat", "text", DeviceData);
    write("lumoraLocalConfig.dat", "text", UserData);
    EXPECT_THAT(check(configDirectory), IsEmpty());
    fs::rename(config / "lumoraLocalConfig.dat", folder / "lumoraLocalConfig.dat");
    EXPECT_THAT(check(folder.string()), IsEmpty());
}

TEST_F(ProtectedFileTreeTest, ListsFilesThatAnyProcessMovedAsideWithTheirState) {
    write("a.dat", "first");
    fs::rename(config / "a.dat", config / "a.dat.unreadable.2");
    writeFile(config / "a.dat.unreadable.10", "rubbish");
    writeFile(config / "notes.unreadable", "not a protected file");
    const auto listed = EncryptFileUtils::listMovedAside(configDirectory);
    ASSERT_EQ(listed.size(), 2U);
    EXPECT_EQ(listed[0].original, storage.configFile("a.dat"));
    EXPECT_EQ(listed[0].keptAs, storage.configFile("a.dat.unreadable.2"));
    EXPECT_EQ(listed[0].state, ReadResult::Ok);
    EXPECT_EQ(listed[1].keptAs, storage.configFile("a.dat.unreadable.10")) << "the newest is the last";
    EXPECT_EQ(listed[1].state, ReadResult::Damaged);
}

TEST_F(ProtectedFileTreeTest, HealthReportsTheStateOfEachFile) {
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
    EXPECT_TRUE(fs::exists(config / "lumoraLocalConfig.dat")) << "the query moves no file";
}

} // namespace
