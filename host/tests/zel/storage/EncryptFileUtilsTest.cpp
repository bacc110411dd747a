#include "LogRecorder.h"
#include "PlainText.h"
#include "SecondImplementation.h"
#include "StorageProfile.h"

#include <zel/EncryptFileUtils.h>
#include <zel/KeyProvider.h>

#include <PrivateFiles.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <stdexcept>
#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing_host::namesIn;
using testing_host::PlainText;
using testing_host::readFile;
using testing_host::writeFile;
using zel::storage::EncryptFileUtils;
using zel::storage::KeyResult;
using zel::storage::MasterKey;
using zel::storage::ReadResult;
using zel::storage::FileCategoryType::DeviceData;
using zel::storage::FileCategoryType::FileCategory;
using zel::storage::FileCategoryType::UserData;
using Operation = testing_host::FaultInjectingFileLayer::Operation;

namespace fs = std::filesystem;

struct EncryptFileUtilsTest : testing::Test {
    testing_host::StorageProfile storage;
    const fs::path config = storage.profile.config();
    const std::string path = storage.configFile("settings.xml");
    const std::string physical = storage.configFile("settings.dat");
    const PlainText first{"<first/>"};
    const PlainText second{"<second secret='hunter2'/>"};

    static bool write(const std::string& to, const PlainText& content) {
        return EncryptFileUtils::writeDataToFile(to, content, UserData);
    }
    /// Returns the content, or the result in angle brackets. Checks that a failure leaves the out parameter unchanged.
    static std::string read(const std::string& from, FileCategory category = UserData) {
        PlainText content("untouched");
        const ReadResult result = EncryptFileUtils::readData(from, content, category);
        PlainText again("untouched");
        EXPECT_EQ(EncryptFileUtils::readDataFromFile(from, again, category), result == ReadResult::Ok);
        EXPECT_EQ(again.text, content.text);
        if (result == ReadResult::Ok) {
            return content.text;
        }
        EXPECT_EQ(content.text, "untouched");
        return nameOf(result);
    }
    /// Returns the content of the disk, ignoring content that is kept in memory.
    std::string onDisk() const {
        PlainText content;
        const ReadResult result = EncryptFileUtils::readFromDisk(path, content, UserData);
        return result == ReadResult::Ok ? content.text : nameOf(result);
    }
    static std::string nameOf(ReadResult result) {
        constexpr const char* names[] = {"", "absent", "unreadable", "wrong key", "damaged", "empty"};
        return names[static_cast<std::size_t>(result)];
    }
};

TEST_F(EncryptFileUtilsTest, ReadsTheContentThatWasWritten) {
    for (const std::string& text : {std::string("<first/>"), std::string("a\0b", 3), std::string(300'000, '\n')}) {
        ASSERT_TRUE(write(path, PlainText(text)));
        EXPECT_EQ(read(path), text);
    }
}

TEST_F(EncryptFileUtilsTest, ThePhysicalNameIsTheLastComponentWithDatForItsExtension) {
    const std::pair<const char*, const char*> names[] = {
        {"lumoraLocalConfig.xml", "lumoraLocalConfig.dat"},
        {"lumoraLocalConfig.dat", "lumoraLocalConfig.dat"},
        {"cachedlumora-config-user.xml.dat", "cachedlumora-config-user.xml.dat"},
        {"a.b.xml", "a.b.dat"},
        {"bare", "bare.dat"},
        {"trailing.", "trailing.dat"},
    };
    fs::create_directory(config / "with.point");
    for (const auto& [named, expected] : names) {
        ASSERT_TRUE(write((config / "with.point" / named).string(), first));
        EXPECT_THAT(namesIn(config / "with.point"), ElementsAre(expected));
        EXPECT_EQ(read((config / "with.point" / named).string()), first.text);
        fs::remove(config / "with.point" / expected);
    }
}

TEST_F(EncryptFileUtilsTest, ReadsTheFileOfTheGivenNameOnlyIfThereIsNoPhysicalOne) {
    ASSERT_TRUE(write(path, first));
    fs::rename(physical, path);
    EXPECT_EQ(read(path), first.text);
    ASSERT_TRUE(write(path, second));
    EXPECT_EQ(read(path), second.text);
    EXPECT_TRUE(fs::exists(path)) << "the file of the given name is unchanged";
    writeFile(physical, "rubbish");
    EXPECT_EQ(read(path), "damaged");
}

TEST_F(EncryptFileUtilsTest, TheFileOfTheGivenNameMustHaveTheProtectedFormat) {
    writeFile(path,
              "<?xml version=\"1.0\"?><Lumora><userConfig name=\"a\" value=\"b\"/></Lumora>\n" + std::string(100, ' '));
    EXPECT_EQ(read(path), "damaged");
}

TEST_F(EncryptFileUtilsTest, EachCauseOfAFailureHasItsOwnResult) {
    EXPECT_EQ(read(path), "absent");
    EXPECT_EQ(read(storage.configFile("none/settings.xml")), "absent");
    ASSERT_TRUE(write(path, first));
    ASSERT_TRUE(EncryptFileUtils::writeDataToFile(storage.configFile("device"), first, DeviceData));
    const std::string file = readFile(physical);

    EXPECT_EQ(read(path, DeviceData), "wrong key");
    writeFile(physical, "");
    EXPECT_EQ(read(path), "damaged");
    writeFile(physical, file.substr(0, file.size() - 1));
    EXPECT_EQ(read(path), "damaged");
    writeFile(physical, file);
    EXPECT_EQ(read(path), first.text);
    fs::remove(storage.keys() / "cat2.key");
    EXPECT_EQ(read(path), "wrong key");
    writeFile(storage.keys() / "cat2.key", "rubbish");
    EXPECT_EQ(read(path), "wrong key");
    EXPECT_EQ(read(storage.configFile("device"), DeviceData), first.text);
}

TEST_F(EncryptFileUtilsTest, AnEmptyContentHasItsOwnResultAndIsNoSuccess) {
    class FixedKey final : public zel::storage::KeyProvider {
    public:
        KeyResult find(FileCategory, MasterKey&) override { return KeyResult::Found; }
        KeyResult findOrMake(FileCategory, MasterKey&) override { return KeyResult::Found; }
    };
    EncryptFileUtils::overrideKeyProvider(std::make_shared<FixedKey>());
    writeFile(physical, testing_host::sealByDescription("", 2, MasterKey()));
    EXPECT_EQ(read(path), "empty");
    writeFile(physical, testing_host::sealByDescription("a", 2, MasterKey()));
    EXPECT_EQ(read(path), "a");
}

TEST_F(EncryptFileUtilsTest, OnlyRegularFilesAreRead) {
    fs::create_directory(physical);
    EXPECT_EQ(read(path), "unreadable");
    fs::remove(physical);
    ASSERT_EQ(::mkfifo(physical.c_str(), 0600), 0);
    EXPECT_EQ(read(path), "unreadable");
}

TEST_F(EncryptFileUtilsTest, ALinkToARegularFileIsFollowed) {
    ASSERT_TRUE(write(path, first));
    fs::rename(physical, storage.profile.data() / "elsewhere");
    fs::create_symlink(storage.profile.data() / "elsewhere", physical);
    EXPECT_EQ(read(path), first.text);
    ASSERT_TRUE(write(path, second));
    EXPECT_FALSE(fs::is_symlink(physical));
    EXPECT_EQ(read(path), second.text);
}

TEST_F(EncryptFileUtilsTest, AFileOver64MiBIsNotRead) {
    ASSERT_TRUE(write(path, first));
    fs::resize_file(physical, 64U * 1024 * 1024);
    EXPECT_EQ(read(path), "damaged");
    fs::resize_file(physical, 64U * 1024 * 1024 + 1);
    EXPECT_EQ(read(path), "unreadable");
}

TEST_F(EncryptFileUtilsTest, AFailingReadIsUnreadable) {
    ASSERT_TRUE(write(path, first));
    for (const Operation step : {Operation::OpenForReading, Operation::Read}) {
        storage.layer->failAt(step, 1, EIO);
        PlainText content("untouched");
        EXPECT_EQ(EncryptFileUtils::readData(path, content, UserData), ReadResult::Unreadable);
        EXPECT_EQ(content.text, "untouched");
    }
    EXPECT_EQ(read(path), first.text);
}

TEST_F(EncryptFileUtilsTest, RefusesEmptyContentAndLeavesAllFilesUnchanged) {
    EXPECT_FALSE(write(path, PlainText()));
    EXPECT_THAT(namesIn(config), IsEmpty());
    EXPECT_FALSE(fs::exists(storage.keys()));
    ASSERT_TRUE(write(path, first));
    const std::string file = readFile(physical);
    EXPECT_FALSE(write(path, PlainText()));
    EXPECT_EQ(readFile(physical), file);
}

TEST_F(EncryptFileUtilsTest, RefusesContentThatIsTooLongToBeRead) {
    ASSERT_TRUE(write(path, first));
    EXPECT_FALSE(write(path, PlainText(std::string(64U * 1024 * 1024, 'x'))));
    EXPECT_EQ(onDisk(), first.text);
}

TEST_F(EncryptFileUtilsTest, AMissingFolderIsNotCreated) {
    EXPECT_FALSE(write(storage.configFile("none/settings.xml"), first));
    EXPECT_THAT(namesIn(config), IsEmpty());
}

TEST_F(EncryptFileUtilsTest, KeepsAnUnreadableFileUnderAnotherNameBeforeReplacingIt) {
    const testing_host::LogRecorder log;
    ASSERT_TRUE(write(path, first));
    ASSERT_TRUE(write(path, second));
    EXPECT_THAT(namesIn(config), ElementsAre("settings.dat")) << "a readable file is not kept";
    for (const char* rubbish : {"rubbish", ""}) {
        writeFile(physical, rubbish);
        ASSERT_TRUE(write(path, first));
        EXPECT_EQ(read(path), first.text);
    }
    EXPECT_THAT(namesIn(config), ElementsAre("settings.dat", "settings.dat.unreadable", "settings.dat.unreadable.2"));
    EXPECT_EQ(readFile(physical + ".unreadable"), "rubbish");
    EXPECT_EQ(readFile(physical + ".unreadable.2"), "");
    EXPECT_THAT(
        log.getTexts(ZelLogLevel::Warning),
        ElementsAre("Replacing settings.dat, which can't be read (too short), kept as settings.dat.unreadable",
                    "Replacing settings.dat, which can't be read (too short), kept as settings.dat.unreadable.2"));
}

TEST_F(EncryptFileUtilsTest, KeepsAFileWhoseKeyIsLostUnderAnotherName) {
    ASSERT_TRUE(write(path, first));
    const std::string file = readFile(physical);
    fs::remove_all(storage.keys());
    ASSERT_TRUE(write(path, second));
    EXPECT_EQ(read(path), second.text);
    EXPECT_EQ(readFile(physical + ".unreadable"), file);
}

TEST_F(EncryptFileUtilsTest, AnUnreadableFileThatCannotBeKeptIsNotReplaced) {
    writeFile(physical, "rubbish");
    storage.layer->failAt(Operation::Link, 2, EIO); // the first link publishes the key
    EXPECT_FALSE(write(path, first));
    EXPECT_EQ(readFile(physical), "rubbish");
    EXPECT_THAT(namesIn(config), ElementsAre("settings.dat"));
}

TEST_F(EncryptFileUtilsTest, AnUnreadableFileThatIsAlreadyKeptGetsNoSecondCopy) {
    writeFile(physical, "rubbish");
    fs::create_hard_link(physical, physical + ".unreadable");
    ASSERT_TRUE(write(path, first));
    EXPECT_EQ(readFile(physical + ".unreadable"), "rubbish");
    EXPECT_THAT(namesIn(config), ElementsAre("settings.dat", "settings.dat.unreadable"));
}

TEST_F(EncryptFileUtilsTest, WithoutHardLinksTheUnreadableFileIsMoved) {
    ASSERT_TRUE(write(storage.configFile("other"), first));
    writeFile(physical, "rubbish");
    storage.layer->failAt(Operation::Link, 1, EPERM);
    ASSERT_TRUE(write(path, first));
    EXPECT_EQ(read(path), first.text);
    EXPECT_EQ(readFile(physical + ".unreadable"), "rubbish");
}

TEST_F(EncryptFileUtilsTest, FilesAndKeysAreAccessibleToTheirOwnerOnlyWithAnyUmask) {
    for (const mode_t mask : {0U, 0777U}) {
        const mode_t previous = ::umask(mask);
        const bool written = write(path, first);
        ::umask(previous);
        ASSERT_TRUE(written);
        EXPECT_TRUE(testing_host::isPrivate(physical));
        EXPECT_TRUE(testing_host::isPrivate(storage.keys()));
        EXPECT_TRUE(testing_host::isPrivate(storage.keys() / "cat2.key"));
        fs::remove_all(storage.keys());
    }
}

TEST_F(EncryptFileUtilsTest, TheConfigurationDirectoryContainsNoKey) {
    ASSERT_TRUE(write(path, first));
    EXPECT_THAT(namesIn(config), ElementsAre("settings.dat"));
    EXPECT_THAT(namesIn(storage.keys()), ElementsAre("cat2.key"));
}

TEST_F(EncryptFileUtilsTest, AMainFileAndItsBackupCanBeCopiedOntoEachOther) {
    ASSERT_TRUE(write(path, first));
    fs::copy_file(physical, config / "settings_backup.dat");
    EXPECT_EQ(read(storage.configFile("settings_backup.xml")), first.text);
}

TEST_F(EncryptFileUtilsTest, EachReadFailureHasItsOwnDebugLineWithoutContentOrFolder) {
    const testing_host::LogRecorder log(testing_host::LogRecorder::Debug::On);
    const auto lineOf = [&](FileCategory category) {
        PlainText content;
        EncryptFileUtils::readData(path, content, category);
        return log.getTexts("Host-EncryptFileUtils").back();
    };
    EXPECT_EQ(lineOf(UserData), "Protected file not read, settings.xml: absent");
    ASSERT_TRUE(write(path, second));
    const std::string file = readFile(physical);
    EXPECT_EQ(lineOf(DeviceData), "Protected file not read, settings.dat: of another category");
    writeFile(physical, file + "x");
    EXPECT_EQ(lineOf(UserData), "Protected file not read, settings.dat: changed since it was written");
    writeFile(physical, "LUMS");
    EXPECT_EQ(lineOf(UserData), "Protected file not read, settings.dat: too short");
    writeFile(physical, "SMUL" + file.substr(4));
    EXPECT_EQ(lineOf(UserData), "Protected file not read, settings.dat: not a protected file");
    writeFile(physical, file.substr(0, 4) + "\x09" + file.substr(5));
    EXPECT_EQ(lineOf(UserData), "Protected file not read, settings.dat: of an unknown version");
    writeFile(physical, file);
    fs::rename(storage.keys() / "cat2.key", storage.keys() / "gone");
    EXPECT_EQ(lineOf(UserData), "Protected file not read, settings.dat: its key is absent");
    writeFile(storage.keys() / "cat2.key", "rubbish");
    EXPECT_EQ(lineOf(UserData), "Protected file not read, settings.dat: its key is malformed");
    EXPECT_FALSE(write(path, PlainText()));
    EXPECT_FALSE(log.mentions("hunter2"));
    EXPECT_FALSE(log.mentions("secret"));
    EXPECT_FALSE(log.mentions(config.string()));
}

TEST_F(EncryptFileUtilsTest, SuccessfulReadsAndWritesAreNotLogged) {
    const testing_host::LogRecorder log(testing_host::LogRecorder::Debug::On);
    ASSERT_TRUE(write(path, second));
    EXPECT_EQ(read(path), second.text);
    EXPECT_THAT(log.getTexts("Host-EncryptFileUtils"), IsEmpty());
}

TEST_F(EncryptFileUtilsTest, AnExceptionOfAKeyProviderOrContentIsReportedAsAFailure) {
    class Throwing final : public zel::storage::KeyProvider {
    public:
        KeyResult find(FileCategory, MasterKey&) override { throw std::runtime_error("hunter2"); }
        KeyResult findOrMake(FileCategory, MasterKey&) override { throw std::runtime_error("hunter2"); }
    };
    const testing_host::LogRecorder log(testing_host::LogRecorder::Debug::On);
    ASSERT_TRUE(write(path, first));
    EncryptFileUtils::overrideKeyProvider(std::make_shared<Throwing>());
    EXPECT_FALSE(write(path, second));
    EXPECT_EQ(onDisk(), "unreadable");
    EXPECT_FALSE(log.mentions("hunter2"));
    EncryptFileUtils::overrideKeyProvider(nullptr);
    EXPECT_EQ(onDisk(), first.text);
}

TEST_F(EncryptFileUtilsTest, AnOverridingKeyProviderProvidesTheKeyOfEveryFile) {
    class InMemory final : public zel::storage::KeyProvider {
    public:
        KeyResult find(FileCategory category, MasterKey& key) override {
            key.data()[0] = static_cast<unsigned char>(category);
            return made ? KeyResult::Found : KeyResult::Absent;
        }
        KeyResult findOrMake(FileCategory category, MasterKey& key) override {
            made = true;
            return find(category, key);
        }

    private:
        bool made = false;
    };
    EncryptFileUtils::overrideKeyProvider(std::make_shared<InMemory>());
    ASSERT_TRUE(write(path, first));
    EXPECT_EQ(read(path), first.text);
    EXPECT_FALSE(fs::exists(storage.keys()));
}

} // namespace
