#include "zel/storage/InMemoryFileLayer.h"

#include "PlainText.h"
#include "StorageProfile.h"
#include "zel/storage/DurableFile.h"
#include "zel/storage/PendingWrites.h"

#include <kyr/FileUtils.h>
#include <kyr/FstreamUtils.h>
#include <kyr/Paths.h>
#include <zel/EncryptFileUtils.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <fstream>
#include <string>

namespace {

using KyrCoreUtils::FileUtils;
using KyrCoreUtils::toPath;
using testing::ElementsAre;
using testing::IsEmpty;
using testing_host::namesIn;
using testing_host::PlainText;
using testing_host::readFile;
using testing_host::writeFile;
using zel::storage::DurableFile;
using zel::storage::EncryptFileUtils;
using zel::storage::FileKind;
using zel::storage::FileLayer;
using zel::storage::InMemoryFileLayer;
using zel::storage::PendingWrites;
using zel::storage::ProtectedText;
using zel::storage::ReadResult;
using zel::storage::FileCategoryType::UserData;

namespace fs = std::filesystem;

struct InMemoryFileLayerTest : testing::Test {
    std::string pathOf(const std::string& name) const { return (profile.config() / name).string(); }

    std::string read(const std::string& from) {
        FileLayer::Handle handle = -1;
        FileKind kind = FileKind::Other;
        std::uint64_t size = 0;
        if (const int error = layer.openForReading(from, handle, kind, size); error != 0) {
            return "error " + std::to_string(error);
        }
        std::string text;
        std::array<char, 2> buffer{};
        std::size_t count = 0;
        while (layer.read(handle, buffer.data(), buffer.size(), count) == 0 && count > 0) {
            text.append(buffer.data(), count);
        }
        EXPECT_EQ(layer.close(handle), 0);
        EXPECT_EQ(size, text.size());
        return text;
    }
    void create(const std::string& to, std::string_view first, std::string_view second = {}) {
        FileLayer::Handle handle = -1;
        ASSERT_EQ(layer.createFile(to, handle), 0);
        for (const auto part : {first, second}) {
            std::size_t count = 0;
            EXPECT_EQ(layer.write(handle, part, count), 0);
            EXPECT_EQ(count, part.size());
        }
        EXPECT_EQ(layer.sync(handle), 0);
        EXPECT_EQ(layer.close(handle), 0);
    }
    static std::string failure(int error) { return "error " + std::to_string(error); }

    const testing_host::TemporaryProfile profile;
    const std::string path = pathOf("a.txt");
    const std::string other = pathOf("b.txt");
    InMemoryFileLayer layer{FileLayer::disk()};
};

TEST_F(InMemoryFileLayerTest, KeepsANewFileWithAllPartsInMemory) {
    create(path, "one", " two");
    EXPECT_EQ(read(path), "one two");
    EXPECT_TRUE(layer.exists(path));
    EXPECT_TRUE(layer.isChanged(path));
    EXPECT_THAT(namesIn(profile.config()), IsEmpty());
}

TEST_F(InMemoryFileLayerTest, ReadsUnchangedFilesFromTheDisk) {
    writeFile(path, "disk");
    EXPECT_EQ(read(path), "disk");
    EXPECT_FALSE(layer.isChanged(path));
    writeFile(path, "later");
    EXPECT_EQ(read(path), "later");
    EXPECT_EQ(read(other), failure(ENOENT));
    EXPECT_FALSE(layer.exists(other));
}

TEST_F(InMemoryFileLayerTest, SeesOneFileUnderEverySpellingOfItsPath) {
    create(profile.root().string() + "/./config/../config/a.txt", "x");
    EXPECT_EQ(read(path), "x");
}

TEST_F(InMemoryFileLayerTest, SeesAFileThroughALinkToItsDirectory) {
    create(path, "x");
    fs::create_directory_symlink(profile.config(), profile.root() / "link");
    EXPECT_EQ(read((profile.root() / "link" / "a.txt").string()), "x");
}

TEST_F(InMemoryFileLayerTest, NamesOnTheDiskAreUtf8) {
    const auto folder = pathOf("") + "\xC3\xA4\xF0\x9F\x98\x80";
    fs::create_directory(toPath(folder));
    writeFile(toPath(folder + "/disk"), "old");
    EXPECT_TRUE(layer.exists(folder));
    EXPECT_EQ(layer.createDirectory(folder), 0);
    create(folder + "/new", "text");
    EXPECT_EQ(read(folder + "/new"), "text");
    EXPECT_EQ(layer.rename(folder + "/disk", folder + "/moved"), 0);
    EXPECT_EQ(read(folder + "/moved"), "old");
}

TEST_F(InMemoryFileLayerTest, CreatingAFileFailsIfADanglingLinkHasItsName) {
    FileLayer::Handle handle = -1;
    fs::create_symlink("nowhere", other);
    EXPECT_EQ(layer.createFile(other, handle), EEXIST);
}

TEST_F(InMemoryFileLayerTest, CreatingAFileFailsIfItsNameExistsOrItsDirectoryDoesNot) {
    FileLayer::Handle handle = -1;
    writeFile(path, "disk");
    EXPECT_EQ(layer.createFile(path, handle), EEXIST);
    EXPECT_EQ(layer.createFile(pathOf("absent/a.txt"), handle), ENOENT);
    EXPECT_EQ(layer.unlink(path), 0);
    create(path, "memory");
    EXPECT_EQ(layer.createFile(path, handle), EEXIST);
    EXPECT_EQ(read(path), "memory");
    EXPECT_EQ(readFile(path), "disk");
}

TEST_F(InMemoryFileLayerTest, ARenameReplacesTheTargetInMemoryOnly) {
    writeFile(path, "disk");
    create(other, "memory");
    EXPECT_EQ(layer.rename(other, path), 0);
    EXPECT_EQ(read(path), "memory");
    EXPECT_EQ(read(other), failure(ENOENT));
    EXPECT_EQ(layer.rename(path, other), 0);
    EXPECT_FALSE(layer.exists(path));
    EXPECT_EQ(layer.rename(path, other), ENOENT);
    EXPECT_EQ(readFile(path), "disk");
}

TEST_F(InMemoryFileLayerTest, AMovedFileIsReadFromItsOldPathOnTheDisk) {
    writeFile(path, "disk");
    EXPECT_EQ(layer.rename(path, other), 0);
    EXPECT_EQ(read(other), "disk");
    EXPECT_EQ(read(path), failure(ENOENT));
    EXPECT_TRUE(layer.exists(other));
    EXPECT_THAT(namesIn(profile.config()), ElementsAre("a.txt"));
}

TEST_F(InMemoryFileLayerTest, ALinkIsASecondNameThatOutlivesTheFirst) {
    writeFile(path, "disk");
    EXPECT_EQ(layer.link(path, other), 0);
    EXPECT_EQ(layer.link(path, other), EEXIST);
    EXPECT_EQ(layer.link(pathOf("absent"), pathOf("c")), ENOENT);
    EXPECT_EQ(layer.rename(path, other), 0);
    EXPECT_TRUE(layer.exists(path)) << "both names are one file, so both remain";
    EXPECT_EQ(layer.unlink(path), 0);
    EXPECT_EQ(read(other), "disk");
}

TEST_F(InMemoryFileLayerTest, ARemovedFileIsGoneInMemoryOnly) {
    writeFile(path, "disk");
    EXPECT_EQ(layer.unlink(path), 0);
    EXPECT_EQ(layer.unlink(path), ENOENT);
    EXPECT_EQ(read(path), failure(ENOENT));
    EXPECT_FALSE(layer.exists(path));
    EXPECT_EQ(layer.unlink(profile.config().string()), EISDIR);
    EXPECT_EQ(readFile(path), "disk");
}

TEST_F(InMemoryFileLayerTest, DirectoriesAreCreatedInMemoryAndHoldFiles) {
    const auto folder = pathOf("folder");
    EXPECT_EQ(layer.createDirectory(folder), 0);
    EXPECT_EQ(layer.createDirectory(folder), 0);
    create(folder + "/a.txt", "x");
    EXPECT_EQ(read(folder + "/a.txt"), "x");
    EXPECT_EQ(layer.createDirectory(folder + "/absent/deep"), ENOENT);
    EXPECT_EQ(layer.createDirectory(folder + "/a.txt"), EEXIST);
    EXPECT_EQ(layer.syncDirectory(folder), 0);
    EXPECT_THAT(namesIn(profile.config()), IsEmpty());
}

TEST_F(InMemoryFileLayerTest, AnExistingDirectoryKeepsItsMode) {
    fs::permissions(profile.config(), fs::perms(0750));
    EXPECT_EQ(layer.createDirectory(profile.config().string()), 0);
    EXPECT_EQ(fs::status(profile.config()).permissions(), fs::perms(0750));
}

TEST_F(InMemoryFileLayerTest, LockingADirectoryDoesNotAcquireTheLockOnTheDisk) {
    FileLayer::Handle held = -1;
    FileLayer::Handle handle = -1;
    const auto folder = profile.config().string();
    ASSERT_EQ(FileLayer::disk().lockDirectory(folder, std::chrono::milliseconds(0), held), 0);
    EXPECT_EQ(layer.lockDirectory(folder, std::chrono::milliseconds(0), handle), 0);
    EXPECT_EQ(layer.close(handle), 0);
    FileLayer::disk().close(held);
    EXPECT_EQ(layer.lockDirectory(folder + "/absent", std::chrono::milliseconds(0), handle), ENOENT);
}

TEST_F(InMemoryFileLayerTest, AnOpenFileSurvivesItsReplacement) {
    create(path, "old");
    FileLayer::Handle handle = -1;
    FileKind kind = FileKind::Other;
    std::uint64_t size = 0;
    ASSERT_EQ(layer.openForReading(path, handle, kind, size), 0);
    EXPECT_EQ(DurableFile::replace(layer, path, "new"), 0);
    std::array<char, 8> buffer{};
    std::size_t count = 0;
    EXPECT_EQ(layer.read(handle, buffer.data(), buffer.size(), count), 0);
    EXPECT_EQ(std::string(buffer.data(), count), "old");
    EXPECT_EQ(layer.close(handle), 0);
    EXPECT_EQ(layer.close(handle), EBADF);
    EXPECT_EQ(layer.read(handle, buffer.data(), buffer.size(), count), EBADF);
    EXPECT_EQ(read(path), "new");
}

/// The layer of the process, as a host sets it.
struct InMemoryProcessTest : InMemoryFileLayerTest {
    InMemoryProcessTest() { InMemoryFileLayer::setActive(std::make_shared<InMemoryFileLayer>(FileLayer::disk())); }
    ~InMemoryProcessTest() override { InMemoryFileLayer::setActive(nullptr); }
};

TEST_F(InMemoryProcessTest, FileUtilsChangeNothingOnTheDiskAndSeeTheirChanges) {
    writeFile(path, "disk");
    EXPECT_EQ(FileUtils::createDirectory(pathOf("folder/deep")), 0);
    EXPECT_TRUE(FileUtils::fileExists(pathOf("folder/deep")));
    EXPECT_EQ(FileUtils::moveFile(path, other, true), 0);
    EXPECT_EQ(FileUtils::moveFile(other, pathOf("folder"), true), EEXIST);
    EXPECT_FALSE(FileUtils::fileExists(path));
    EXPECT_TRUE(FileUtils::fileExists(other));
    EXPECT_EQ(FileUtils::removeFile(other), 0);
    EXPECT_EQ(FileUtils::removeFile(other), ENOENT);
    EXPECT_FALSE(FileUtils::fileExists(other));
    EXPECT_THAT(namesIn(profile.config()), ElementsAre("a.txt"));
}

TEST_F(InMemoryProcessTest, StreamsOnlyReadFilesThatAreUnchangedOnTheDisk) {
    using KyrCoreUtils::FstreamUtils;
    using KyrCoreUtils::StreamMode;
    writeFile(path, "disk");
    std::fstream stream;
    EXPECT_FALSE(FstreamUtils::open(stream, other, StreamMode::Write));
    EXPECT_FALSE(FstreamUtils::open(stream, path, StreamMode::Write));
    EXPECT_TRUE(FstreamUtils::open(stream, path, StreamMode::Read));
    EXPECT_EQ(FileUtils::moveFile(path, other, false), 0);
    EXPECT_FALSE(FstreamUtils::open(stream, path, StreamMode::Read));
    EXPECT_EQ(readFile(path), "disk");
    EXPECT_THAT(namesIn(profile.config()), ElementsAre("a.txt"));
}

TEST_F(InMemoryProcessTest, ProtectedFilesAndTheirKeysStayInMemory) {
    const auto file = pathOf("lumoraLocalConfig.dat");
    EXPECT_TRUE(EncryptFileUtils::writeDataToFile(file, PlainText("value"), UserData));
    PlainText content;
    EXPECT_EQ(EncryptFileUtils::readData(file, content, UserData), ReadResult::Ok);
    EXPECT_EQ(content.text, "value");
    EXPECT_EQ(EncryptFileUtils::readFromDisk(file, content, UserData), ReadResult::Absent);
    EXPECT_THAT(namesIn(profile.config()), IsEmpty());
    EXPECT_THAT(namesIn(profile.data()), IsEmpty());
}

TEST_F(InMemoryProcessTest, AFailedMoveKeepsThePendingContentOfAFileInMemory) {
    const auto file = pathOf("lumoraLocalConfig.dat");
    EXPECT_TRUE(EncryptFileUtils::writeDataToFile(file, PlainText("old"), UserData));
    auto& writes = PendingWrites::instance();
    const auto fail = [](const std::string&, const ProtectedText&, auto) { return std::string("full"); };
    EXPECT_FALSE(writes.write(file, PlainText("new"), UserData, fail));
    EXPECT_EQ(FileUtils::moveFile(file, pathOf("none/target.dat"), false), ENOENT);
    EXPECT_TRUE(writes.find(file));
    writes.clear();
}

TEST_F(InMemoryProcessTest, ADamagedFileIsReplacedInMemoryAndReportedAsDamaged) {
    const auto file = pathOf("lumoraLocalConfig.dat");
    writeFile(file, "damaged");
    EXPECT_TRUE(EncryptFileUtils::writeDataToFile(file, PlainText("value"), UserData));
    PlainText content;
    EXPECT_EQ(EncryptFileUtils::readData(file, content, UserData), ReadResult::Ok);
    const auto health = EncryptFileUtils::health(profile.config().string());
    ASSERT_EQ(health.files.size(), 1U);
    EXPECT_EQ(health.files.front().state, ReadResult::Damaged);
    EXPECT_THAT(EncryptFileUtils::listMovedAside(profile.config().string()), IsEmpty());
    EXPECT_EQ(readFile(file), "damaged");
    EXPECT_THAT(namesIn(profile.config()), ElementsAre("lumoraLocalConfig.dat"));
}

} // namespace
