#include "zel/storage/Quarantine.h"

#include "MovedAsideFixture.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing_host::namesIn;
using testing_host::PlainText;
using testing_host::readFile;
using testing_host::writeFile;
using zel::storage::EncryptFileUtils;
using zel::storage::Quarantine;
using zel::storage::FileCategoryType::UserData;
using Operation = testing_host::FaultInjectingFileLayer::Operation;

namespace fs = std::filesystem;

class QuarantineTest : public storage_test::MovedAsideFixture {};

TEST_F(QuarantineTest, AnExistingNameIsNotReplaced) {
    writeFile(config / "lumoraLocalConfig.dat.unreadable", "older");
    fs::create_directory(config / "lumoraLocalConfig.dat.unreadable.2");
    writeFile(config / "lumoraLocalConfig.dat", "rubbish");
    ASSERT_EQ(check(configDirectory).size(), 1U);
    EXPECT_THAT(namesIn(config), ElementsAre("lumoraLocalConfig.dat.unreadable", "lumoraLocalConfig.dat.unreadable.2",
                                             "lumoraLocalConfig.dat.unreadable.3"));
    EXPECT_EQ(readFile(config / "lumoraLocalConfig.dat.unreadable"), "older");
    EXPECT_EQ(readFile(config / "lumoraLocalConfig.dat.unreadable.3"), "rubbish");
}

TEST_F(QuarantineTest, AFileIsNotMovedIfTheHighestNumberIsInUse) {
    writeFile(config / "lumoraLocalConfig.dat.unreadable.1000000", "older");
    writeFile(config / "lumoraLocalConfig.dat.unreadable.1000001", "not a kept file");
    writeFile(config / "lumoraLocalConfig.dat", "rubbish");
    EXPECT_THAT(check(configDirectory), IsEmpty());
    EXPECT_EQ(readFile(config / "lumoraLocalConfig.dat"), "rubbish");
    EXPECT_EQ(readFile(config / "lumoraLocalConfig.dat.unreadable.1000001"), "not a kept file");
}

TEST_F(QuarantineTest, TheNewestFiveFilesAreKeptAndDirectoriesAreIgnored) {
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

TEST_F(QuarantineTest, ParsesOnlyExactNamesOfKeptFiles) {
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

TEST_F(QuarantineTest, WithoutHardLinksAFailedRestoringKeepsThePresentFile) {
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

} // namespace
