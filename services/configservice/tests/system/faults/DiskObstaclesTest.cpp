#include "FaultySession.h"
#include "OtherWriter.h"

#include <cerrno>

namespace ZelUnified {

using testing::AnyOf;
using testing::HasSubstr;
using testing_host::FaultInjectingFileLayer;

namespace fs = std::filesystem;

namespace {

enum class Thing { Folder, FullFolder, File, DanglingLink, LinkToItself };

void put(Thing thing, const fs::path& path) {
    switch (thing) {
    case Thing::Folder:
        fs::create_directory(path);
        break;
    case Thing::FullFolder:
        testing_host::writeFile(path / "inside", "inside");
        break;
    case Thing::File:
        testing_host::writeFile(path, "in the way");
        break;
    case Thing::DanglingLink:
        fs::create_symlink("nowhere", path);
        break;
    case Thing::LinkToItself:
        fs::create_symlink(path.filename(), path);
        break;
    }
}

/// Makes every change of the disk fail; reading still works.
void makeReadOnly(FaultInjectingFileLayer& layer) {
    using Operation = FaultInjectingFileLayer::Operation;
    for (const auto operation :
         {Operation::CreateFile, Operation::Rename, Operation::Link, Operation::Unlink, Operation::CreateDirectory}) {
        for (std::size_t call = 1; call <= 1000; ++call) {
            layer.failAt(operation, call, EROFS);
        }
    }
}

} // namespace

class DiskObstacles : public testing::Test {
protected:
    /// Replaces the file by an obstacle. Keeps the file for `putBack`.
    void obstruct(const fs::path& path, Thing thing) {
        aside = path.string() + ".aside";
        fs::rename(path, aside);
        put(thing, path);
    }
    void putBack(const fs::path& path) const {
        fs::remove_all(path);
        fs::rename(aside, path);
    }

    FaultySession session;
    fs::path aside;
};

/// An obstacle in the place of one of the protected files.
class FileObstacles : public testing::TestWithParam<Thing> {};

TEST_P(FileObstacles, AreMovedAsideByTheNextWrite) {
    for (const std::string name :
         {mainFile, backupFile, "Cache/cachedDownloaded.dat", "Cache/cachedUrlProvisioningConfigStore.dat"}) {
        SCOPED_TRACE(name);
        FaultySession session;
        session.useRealDisk();
        session.leaveFiles();
        fs::remove(session.file(name));
        put(GetParam(), session.file(name));
        session.restart();
        EXPECT_EQ(session.valueOf(L"k"), L"old");
        // The main file is not written until its backup is readable again.
        changeAll(session, L"new");
        changeAll(session, L"newer");
        expectAtTheNextStart(session, L"newer");
        EXPECT_EQ(fs::symlink_status(session.file(name)).type(), fs::file_type::regular);
    }
}

INSTANTIATE_TEST_SUITE_P(Things, FileObstacles,
                         testing::Values(Thing::Folder, Thing::FullFolder, Thing::DanglingLink, Thing::LinkToItself));

TEST_F(DiskObstacles, AFileAtThePathOfTheCacheFolderDisablesOnlyTheCopies) {
    session.leaveFiles();
    obstruct(session.file("Cache"), Thing::File);
    session.restart();
    EXPECT_EQ(session.valueOf(L"k"), L"old");
    changeAll(session, L"new");
    session.restart();
    EXPECT_EQ(session.valueOf(L"k"), L"new");
    EXPECT_EQ(session.valueOf(L"d"), L"(none)");
    EXPECT_EQ(testing_host::readFile(session.file("Cache")), "in the way");
    putBack(session.file("Cache"));
    session.restart();
    EXPECT_EQ(session.valueOf(L"d"), L"old");
    changeAll(session, L"newest");
    expectAtTheNextStart(session, L"newest");
}

TEST_F(DiskObstacles, AFileAtThePathOfTheConfigurationFolderLeavesAWorkingRun) {
    session.leaveFiles();
    obstruct(session.profile.config(), Thing::File);
    session.restart();
    EXPECT_TRUE(session.isLogged("Failed to read config file " + session.file(backupFile).string()));
    changeAll(session, L"new");
    session.adapter->InvokeResetData(ResetDataOptionEnum::ResetAll);
    session.unload();
    putBack(session.profile.config());
    expectAtTheNextStart(session, L"old");
    changeAll(session, L"newest");
    expectAtTheNextStart(session, L"newest");
}

TEST_F(DiskObstacles, WithoutTheKeysNoFileIsTouched) {
    session.leaveFiles();
    const auto before = testing_host::readFile(session.file(mainFile));
    const auto keys = session.profile.data() / "keys";
    obstruct(keys, Thing::File);
    session.restart();
    changeAll(session, L"new");
    EXPECT_TRUE(session.isLogged(std::string("Both files are broken, write to ") + mainFile));
    EXPECT_EQ(testing_host::readFile(session.file(mainFile)), before);
    session.unload();
    putBack(keys);
    expectAtTheNextStart(session, L"old");
    changeAll(session, L"newest");
    expectAtTheNextStart(session, L"newest");
}

TEST_F(DiskObstacles, AFolderAtThePathOfTheDefaultsIsKeptAndLogged) {
    const auto defaults = session.profile.resources() / "lumora-config-defaults.xml";
    put(Thing::FullFolder, defaults);
    session.leaveFiles();
    EXPECT_TRUE(session.isLogged("renaming invalid file to: lumora-config-defaults-backup.xml"));
    EXPECT_TRUE(session.isLogged("error creating backup file: "));
    EXPECT_EQ(testing_host::readFile(defaults / "inside"), "inside");
    fs::remove_all(defaults);
    session.givenDefaults({{L"shipped", L"v"}});
    session.restart();
    EXPECT_EQ(session.valueOf(L"shipped"), L"v");
    EXPECT_EQ(session.valueOf(L"k"), L"old");
}

TEST_F(DiskObstacles, AFolderAtThePathOfThePolicysTextCopyIsKeptAndThePolicyApplies) {
    const auto copy = session.file("RegistryConfigStore.txt");
    session.givenPolicy(L"p", L"v");
    put(Thing::FullFolder, copy);
    session.leaveFiles();
    session.restart();
    EXPECT_EQ(session.valueOf(L"p"), L"v");
    EXPECT_EQ(testing_host::readFile(copy / "inside"), "inside");
    fs::remove_all(copy);
    session.restart();
    EXPECT_EQ(testing_host::readFile(copy), "p: v\n");
}

TEST_F(DiskObstacles, AReadOnlyDiskIsReadAndChangesApplyToThisRun) {
    session.leaveFiles();
    makeReadOnly(*session.layer);
    session.restart();
    EXPECT_EQ(session.valueOf(L"k"), L"old");
    EXPECT_EQ(session.valueOf(L"d"), L"old");
    EXPECT_EQ(session.valueOf(L"ServicesDomain"), L"old");
    changeAll(session, L"new");
    EXPECT_TRUE(session.isLogged("Failed to write protected file " + session.file(mainFile).string() +
                                 ": Read-only file system"));
    session.unload();
    session.layer->heal();
    expectAtTheNextStart(session, L"old");
    changeAll(session, L"newest");
    expectAtTheNextStart(session, L"newest");
}

TEST_F(DiskObstacles, TwoProcessesOnOneProfileLeaveEachFileComplete) {
    session.leaveFiles();
    session.loadAndStart();
    session.useRealDisk();
    OtherWriter other(session.profile);
    for (int round = 0; round < 100; ++round) {
        session.adapter->setConfig(L"k", L"ours " + std::to_wstring(round));
        session.persistAndBackUp();
        for (const auto* name : {mainFile, backupFile}) {
            EXPECT_THAT(FaultySession::clearTextOf(session.file(name)), AnyOf(HasSubstr("ours"), HasSubstr("theirs")));
        }
    }
    EXPECT_TRUE(other.finish());
    changeAll(session, L"newest");
    expectAtTheNextStart(session, L"newest");
}

} // namespace ZelUnified
