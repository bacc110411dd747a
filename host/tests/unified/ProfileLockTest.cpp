#include "../zel/storage/PlainText.h"
#include "../zel/storage/StorageProfile.h"
#include "HoldingProcess.h"

#include <unified/ProfileLock.h>
#include <zel/EncryptFileUtils.h>

#include <PrivateFiles.h>
#include <TemporaryProfile.h>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <filesystem>
#include <string>

using testing::AllOf;
using testing::HasSubstr;
using testing_host::HoldingProcess;
using testing_host::TemporaryProfile;
using ZelUnified::ProfileLock;

namespace {

class ProfileLockTest : public testing::Test {
protected:
    const TemporaryProfile profile;
    const std::string config = profile.config().string();
    const std::string state = profile.state().string();
};

} // namespace

TEST_F(ProfileLockTest, TheFirstLockIsHeld) {
    const ProfileLock lock(config, state);
    EXPECT_TRUE(lock.isHeld());
    EXPECT_EQ(lock.getHolder(), 0);
    EXPECT_EQ(lock.getProblem(), "");
}

TEST_F(ProfileLockTest, ASecondLockReportsTheProcessThatHoldsTheFirst) {
    const HoldingProcess other(config, state);
    const ProfileLock lock(config, state);
    EXPECT_FALSE(lock.isHeld());
    EXPECT_EQ(lock.getHolder(), other.getId());
    EXPECT_THAT(lock.getProblem(), AllOf(HasSubstr(config), HasSubstr(std::to_string(other.getId()))));
}

TEST_F(ProfileLockTest, ASecondLockOfTheSameProcessIsRefusedToo) {
    const ProfileLock first(config, state);
    const ProfileLock second(config, state);
    EXPECT_FALSE(second.isHeld());
    EXPECT_EQ(second.getHolder(), getpid());
}

TEST_F(ProfileLockTest, DestroyingTheLockReleasesIt) {
    { const ProfileLock lock(config, state); }
    const ProfileLock next(config, state);
    EXPECT_TRUE(next.isHeld());
}

TEST_F(ProfileLockTest, TheLockOfADeadProcessIsReleased) {
    HoldingProcess other(config, state);
    other.end();
    const ProfileLock lock(config, state);
    EXPECT_TRUE(lock.isHeld());
}

TEST_F(ProfileLockTest, ProfilesThatShareAStateFolderAreLockedSeparately) {
    const ProfileLock first(config, state);
    const ProfileLock second(config + "2", state);
    EXPECT_TRUE(second.isHeld());
}

TEST_F(ProfileLockTest, DifferentPathsOfOneDirectoryShareOneLock) {
    const ProfileLock first(config, state);
    for (const auto& spelling : {config + "/", profile.root().string() + "/./config"}) {
        EXPECT_FALSE(ProfileLock(spelling, state).isHeld()) << spelling;
    }
}

TEST_F(ProfileLockTest, ALinkToADirectorySharesItsLock) {
    const ProfileLock first(config, state);
    std::filesystem::create_directory_symlink(profile.config(), profile.root() / "link");
    EXPECT_FALSE(ProfileLock((profile.root() / "link").string(), state).isHeld());
}

TEST_F(ProfileLockTest, FindProblemReportsTheHolderAndChangesNothing) {
    const auto emptyState = (profile.root() / "other-state").string();
    EXPECT_EQ(ProfileLock::findProblem(config, emptyState).text, "");
    EXPECT_FALSE(std::filesystem::exists(emptyState));
    {
        const HoldingProcess other(config, state);
        EXPECT_EQ(ProfileLock::findProblem(config, state).text, ProfileLock(config, state).getProblem());
        EXPECT_TRUE(ProfileLock::findProblem(config, state).isInUse);
        EXPECT_THAT(ProfileLock::findProblem(config + "/", emptyState).text, HasSubstr("in use by another process"));
        EXPECT_EQ(ProfileLock::findProblem(config + "2", state).text, "");
        EXPECT_FALSE(std::filesystem::exists(config + "2"));
    }
    EXPECT_EQ(ProfileLock::findProblem(config, state).text, "") << "the record of the killed process remains";
}

TEST_F(ProfileLockTest, FindProblemIgnoresAProcessThatReusesTheIdOfAKilledHolder) {
    std::filesystem::path record;
    {
        const ProfileLock lock(config, state);
        record = std::filesystem::directory_iterator(state)->path();
    }
    testing_host::writeFile(record, std::to_string(getpid()) + "\n");
    EXPECT_EQ(ProfileLock::findProblem(config, state).text, "");
}

TEST_F(ProfileLockTest, FindProblemReportsARecordedHolderThatLockedTheDirectoryOrItsRecordWithoutAMark) {
    std::filesystem::path record;
    {
        const ProfileLock lock(config, state);
        record = std::filesystem::directory_iterator(state)->path();
    }
    testing_host::writeFile(record, std::to_string(getpid()) + "\n");
    for (const auto& locked : {config, record.string()}) {
        const int descriptor = open(locked.c_str(), O_RDONLY | O_CLOEXEC);
        ASSERT_EQ(flock(descriptor, LOCK_EX | LOCK_NB), 0);
        EXPECT_THAT(ProfileLock::findProblem(config, state).text,
                    HasSubstr("in use by process " + std::to_string(getpid())))
            << locked;
        close(descriptor);
        EXPECT_EQ(ProfileLock::findProblem(config, state).text, "") << locked;
    }
}

TEST_F(ProfileLockTest, FindProblemReportsADirectoryThatCannotBeOpened) {
    testing_host::writeFile(profile.root() / "file", "x");
    const auto file = (profile.root() / "file").string();
    const auto problem = ProfileLock::findProblem(file, state);
    EXPECT_THAT(problem.text, AllOf(HasSubstr(file), HasSubstr("can't be opened")));
    EXPECT_FALSE(problem.isInUse);
}

TEST_F(ProfileLockTest, CreatesTheStateFolder) {
    const auto missing = profile.state() / "new" / "folder";
    const ProfileLock lock(config, missing.string());
    EXPECT_TRUE(lock.isHeld());
}

TEST_F(ProfileLockTest, ReportsWhyTheDirectoryCannotBeLocked) {
    testing_host::writeFile(profile.root() / "file", "x");
    const ProfileLock lock((profile.root() / "file").string(), state);
    EXPECT_FALSE(lock.isHeld());
    EXPECT_EQ(lock.getHolder(), 0);
    EXPECT_THAT(lock.getProblem(), HasSubstr((profile.root() / "file").string()));
}

TEST_F(ProfileLockTest, CreatesTheConfigurationDirectoryWithMode0700) {
    const auto missing = profile.config() / "new";
    const ProfileLock lock(missing.string(), state);
    EXPECT_TRUE(lock.isHeld());
    EXPECT_TRUE(testing_host::isPrivate(missing));
}

TEST_F(ProfileLockTest, ASecondProcessWithAnotherStateFolderIsRefused) {
    const HoldingProcess other(config, state);
    const ProfileLock lock(config, (profile.root() / "other state").string());
    EXPECT_FALSE(lock.isHeld());
    EXPECT_EQ(lock.getHolder(), 0) << "the number is in the other state folder";
    EXPECT_EQ(lock.getProblem(), "The profile " + config + " is in use by another process.");
}

TEST_F(ProfileLockTest, RemovingAllFilesDoesNotReleaseTheLock) {
    const HoldingProcess other(config, state);
    std::filesystem::remove_all(state);
    for (const auto& entry : std::filesystem::directory_iterator(config)) {
        std::filesystem::remove_all(entry);
    }
    EXPECT_FALSE(ProfileLock(config, state).isHeld());
}

TEST_F(ProfileLockTest, TheLockWorksWithoutAStateFolderAndCreatesNoFileInTheProfile) {
    testing_host::writeFile(profile.root() / "file", "x");
    const ProfileLock lock(config, (profile.root() / "file").string());
    EXPECT_TRUE(lock.isHeld());
    EXPECT_TRUE(std::filesystem::is_empty(config));
    EXPECT_FALSE(ProfileLock(config, state).isHeld());
}

TEST_F(ProfileLockTest, TheIdOfADeadProcessIsNotReported) {
    {
        HoldingProcess killed(config, state);
        killed.end(); // leaves its process id in the file
    }
    const HoldingProcess other(config, (profile.root() / "other state").string());
    const ProfileLock lock(config, state);
    EXPECT_FALSE(lock.isHeld());
    EXPECT_EQ(lock.getHolder(), 0);
}

TEST_F(ProfileLockTest, ReleasingTheLockDropsPendingWritesOfTheProfile) {
    using zel::storage::EncryptFileUtils;
    testing_host::StorageProfile storage;
    const std::string path = storage.configFile("settings.dat");
    {
        const ProfileLock lock(storage.profile.config().string(), storage.profile.state().string());
        { const ProfileLock refused(storage.profile.config().string(), storage.profile.state().string()); }
        storage.layer->setFreeSpace(0);
        EXPECT_FALSE(EncryptFileUtils::writeDataToFile(path, testing_host::PlainText("new"),
                                                       zel::storage::FileCategoryType::UserData));
        EXPECT_FALSE(EncryptFileUtils::retryPendingWrites()) << "a refused lock does not end the first one";
    }
    storage.layer->heal();
    EXPECT_TRUE(EncryptFileUtils::retryPendingWrites());
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(ProfileLockTest, TheFileWithTheHoldersIdHasMode0600) {
    const ProfileLock lock(config, state);
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(state)) {
        ++files;
        EXPECT_TRUE(testing_host::isPrivate(entry.path()));
    }
    EXPECT_EQ(files, 1);
}

TEST_F(ProfileLockTest, AFailedAttemptDoesNotOverwriteTheHoldersId) {
    const HoldingProcess other(config, state);
    { const ProfileLock refused(config, state); }
    const ProfileLock again(config, state);
    EXPECT_EQ(again.getHolder(), other.getId());
}
