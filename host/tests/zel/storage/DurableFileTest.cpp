#include "zel/storage/DurableFile.h"

#include "StorageProfile.h"

#include <Patterns.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <string>

namespace {

using testing::AnyOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing_host::FaultInjectingFileLayer;
using testing_host::namesIn;
using testing_host::readFile;
using testing_host::writeFile;
using zel::storage::DurableFile;
using Operation = FaultInjectingFileLayer::Operation;

namespace fs = std::filesystem;

struct DurableFileTest : testing::Test {
    testing_host::TemporaryProfile profile;
    const std::string path = (profile.config() / "settings.dat").string();
    const std::string oldContent = "the old content";
    const std::string newContent = "a new content that is a little longer";

    /// Deletes all files and writes the old content.
    void startOver() {
        fs::remove_all(profile.config());
        writeFile(path, oldContent);
    }
    void leave(const std::string& name, std::chrono::minutes age) const {
        writeFile(profile.config() / name, "torn");
        fs::last_write_time(profile.config() / name, fs::file_time_type::clock::now() - age);
    }
};

TEST_F(DurableFileTest, ReplaceWritesSyncsAndRenamesATemporaryFileInThisOrder) {
    startOver();
    FaultInjectingFileLayer layer;
    EXPECT_EQ(DurableFile::replace(layer, path, newContent), 0);
    EXPECT_EQ(readFile(path), newContent);
    EXPECT_THAT(layer.getCalls(), ElementsAre(Operation::CreateFile, Operation::Write, Operation::Sync,
                                              Operation::Close, Operation::Rename, Operation::SyncDirectory));
    EXPECT_THAT(namesIn(profile.config()), ElementsAre("settings.dat"));
}

TEST_F(DurableFileTest, CreateWritesSyncsAndLinksATemporaryFileAndRefusesAnExistingName) {
    FaultInjectingFileLayer layer;
    EXPECT_EQ(DurableFile::create(layer, path, oldContent), 0);
    EXPECT_THAT(layer.getCalls(),
                ElementsAre(Operation::CreateFile, Operation::Write, Operation::Sync, Operation::Close, Operation::Link,
                            Operation::Unlink, Operation::SyncDirectory));
    EXPECT_EQ(DurableFile::create(layer, path, newContent), EEXIST);
    EXPECT_EQ(readFile(path), oldContent);
    EXPECT_THAT(namesIn(profile.config()), ElementsAre("settings.dat"));
}

TEST_F(DurableFileTest, AFailureUpToTheRenameLeavesTheOldFileUnchanged) {
    for (const Operation step :
         {Operation::CreateFile, Operation::Write, Operation::Sync, Operation::Close, Operation::Rename}) {
        for (const int error : {EIO, ENOSPC, EDQUOT, EACCES}) {
            startOver();
            FaultInjectingFileLayer layer;
            layer.failAt(step, 1, error);
            EXPECT_EQ(DurableFile::replace(layer, path, newContent), error) << static_cast<int>(step);
            EXPECT_EQ(readFile(path), oldContent) << static_cast<int>(step);
            EXPECT_THAT(namesIn(profile.config()), ElementsAre("settings.dat")) << static_cast<int>(step);
        }
    }
}

TEST_F(DurableFileTest, AFailureToSyncTheDirectoryIsReportedAndTheNewFileRemains) {
    startOver();
    FaultInjectingFileLayer layer;
    layer.failAt(Operation::SyncDirectory, 1, EIO);
    EXPECT_EQ(DurableFile::replace(layer, path, newContent), EIO);
    EXPECT_EQ(readFile(path), newContent);
    EXPECT_THAT(namesIn(profile.config()), ElementsAre("settings.dat"));
}

TEST_F(DurableFileTest, AFailedCreationLeavesNoFile) {
    for (const Operation step :
         {Operation::CreateFile, Operation::Write, Operation::Sync, Operation::Close, Operation::Link}) {
        FaultInjectingFileLayer layer;
        layer.failAt(step, 1, EIO);
        EXPECT_EQ(DurableFile::create(layer, path, newContent), EIO);
        EXPECT_THAT(namesIn(profile.config()), IsEmpty()) << static_cast<int>(step);
    }
}

TEST_F(DurableFileTest, ShortWritesAreContinued) {
    startOver();
    FaultInjectingFileLayer layer;
    layer.limitWrites(3);
    EXPECT_EQ(DurableFile::replace(layer, path, newContent), 0);
    EXPECT_EQ(readFile(path), newContent);
}

TEST_F(DurableFileTest, AFailedPartialWriteLeavesTheOldFileUnchanged) {
    startOver();
    FaultInjectingFileLayer layer;
    layer.limitWrites(3);
    layer.failAt(Operation::Write, 4, EIO);
    EXPECT_EQ(DurableFile::replace(layer, path, newContent), EIO);
    EXPECT_EQ(readFile(path), oldContent);
    EXPECT_THAT(namesIn(profile.config()), ElementsAre("settings.dat"));
}

TEST_F(DurableFileTest, AFullDiskLeavesTheOldFileUnchanged) {
    for (std::size_t space = 0; space < newContent.size(); ++space) {
        startOver();
        FaultInjectingFileLayer layer;
        layer.setFreeSpace(space);
        EXPECT_EQ(DurableFile::replace(layer, path, newContent), ENOSPC);
        EXPECT_EQ(readFile(path), oldContent);
        EXPECT_THAT(namesIn(profile.config()), ElementsAre("settings.dat"));
        layer.heal();
        EXPECT_EQ(DurableFile::replace(layer, path, newContent), 0);
    }
}

TEST_F(DurableFileTest, APowerCutAtAnyMomentLeavesTheOldOrTheNewContent) {
    constexpr std::size_t calls = 6;
    for (std::size_t call = 1; call <= calls + 1; ++call) {
        for (std::size_t kept = 0; kept <= 2; ++kept) {
            startOver();
            FaultInjectingFileLayer layer;
            layer.dieAt(call);
            const int error = DurableFile::replace(layer, path, newContent);
            layer.cutPower(kept);
            EXPECT_THAT(readFile(path), AnyOf(oldContent, newContent))
                << "process ended at call " << call << ", kept " << kept;
            if (error == 0) {
                EXPECT_EQ(readFile(path), newContent) << "reported as done";
            }
            if (call <= 5 && kept == 0) {
                EXPECT_EQ(readFile(path), oldContent) << "process ended at call " << call;
            }
        }
    }
}

TEST_F(DurableFileTest, AReplacedFileHasNoUnsyncedName) {
    startOver();
    FaultInjectingFileLayer layer;
    EXPECT_EQ(DurableFile::replace(layer, path, newContent), 0);
    EXPECT_EQ(layer.countUnsyncedNames(), 0U);
}

TEST_F(DurableFileTest, TheTemporaryNameIsHiddenUniqueAndInTheSameFolder) {
    const std::string name = fs::path(DurableFile::makeTemporaryName("/folder/cachedStore.dat")).filename().string();
    EXPECT_THAT(name, testing_host::MatchesRegex("\\.cachedStore\\.dat\\.[0-9a-f]{16}\\.tmp"));
    EXPECT_NE(DurableFile::makeTemporaryName(path), DurableFile::makeTemporaryName(path));
    EXPECT_EQ(fs::path(DurableFile::makeTemporaryName(path)).parent_path(), profile.config());
    EXPECT_THAT(DurableFile::makeTemporaryName("bare.dat"), testing::StartsWith(".bare.dat."));
}

TEST_F(DurableFileTest, APathWithoutANameIsRefused) {
    FaultInjectingFileLayer layer;
    EXPECT_EQ(DurableFile::replace(layer, "", newContent), EINVAL);
    EXPECT_EQ(DurableFile::replace(layer, profile.config().string() + "/", newContent), EINVAL);
    EXPECT_THAT(layer.getCalls(), IsEmpty());
}

TEST_F(DurableFileTest, AMissingFolderIsNotCreated) {
    FaultInjectingFileLayer layer;
    EXPECT_EQ(DurableFile::replace(layer, (profile.config() / "none" / "a.dat").string(), newContent), ENOENT);
    EXPECT_THAT(namesIn(profile.config()), IsEmpty());
}

TEST_F(DurableFileTest, RemovesOldTemporaryFilesOfKilledWriters) {
    leave(".settings.dat.0123456789abcdef.tmp", std::chrono::minutes(30));
    leave(".settings.dat.fedcba9876543210.tmp", std::chrono::minutes(1));
    leave(".other.dat.0123456789abcdef.tmp", std::chrono::minutes(30));
    leave(".settings.dat.notes.tmp", std::chrono::minutes(30));
    leave(".settings.dat.0123456789abcdeg.tmp", std::chrono::minutes(30));
    FaultInjectingFileLayer layer;
    EXPECT_EQ(DurableFile::replace(layer, path, newContent), 0);
    EXPECT_THAT(namesIn(profile.config()),
                ElementsAre(".other.dat.0123456789abcdef.tmp", ".settings.dat.0123456789abcdeg.tmp",
                            ".settings.dat.fedcba9876543210.tmp", ".settings.dat.notes.tmp", "settings.dat"));
}

TEST_F(DurableFileTest, RemovesOldTemporaryFilesOfAllWritersBelowADirectory) {
    fs::create_directory(profile.config() / "Cache");
    leave(".settings.dat.0123456789abcdef.tmp", std::chrono::minutes(30));
    leave("Cache/.a.0123456789abcdef.tmp", std::chrono::minutes(30));
    leave("Cache/.a.fedcba9876543210.tmp", std::chrono::minutes(1));
    leave(".settings.dat.0123456789abcdeg.tmp", std::chrono::minutes(30));
    leave("settings.dat.0123456789abcdef.tmp", std::chrono::minutes(30));
    leave("..0123456789abcdef.tmp", std::chrono::minutes(30));
    leave(".tmp", std::chrono::minutes(30));
    FaultInjectingFileLayer layer;
    DurableFile::removeLeftovers(layer, profile.config().string());
    EXPECT_THAT(namesIn(profile.config()), ElementsAre("..0123456789abcdef.tmp", ".settings.dat.0123456789abcdeg.tmp",
                                                       ".tmp", "Cache", "settings.dat.0123456789abcdef.tmp"));
    EXPECT_THAT(namesIn(profile.config() / "Cache"), ElementsAre(".a.fedcba9876543210.tmp"));
}

TEST_F(DurableFileTest, KeepsTemporaryFilesWithATimeInTheFuture) {
    const std::string name = ".settings.dat.0123456789abcdef.tmp";
    writeFile(profile.config() / name, "being written");
    fs::last_write_time(profile.config() / name, fs::file_time_type::clock::now() + std::chrono::hours(24));
    FaultInjectingFileLayer layer;
    EXPECT_EQ(DurableFile::replace(layer, path, newContent), 0);
    EXPECT_THAT(namesIn(profile.config()), ElementsAre(name, "settings.dat"));
}

TEST_F(DurableFileTest, ALinkIsReplacedAndItsTargetIsUnchanged) {
    writeFile(profile.data() / "target", oldContent);
    fs::create_symlink(profile.data() / "target", path);
    EXPECT_EQ(DurableFile::replace(zel::storage::FileLayer::platform(), path, newContent), 0);
    EXPECT_FALSE(fs::is_symlink(path));
    EXPECT_EQ(readFile(path), newContent);
    EXPECT_EQ(readFile(profile.data() / "target"), oldContent);
}

} // namespace
