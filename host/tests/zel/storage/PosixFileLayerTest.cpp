#include "StorageProfile.h"

#include <zel/FileLayer.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>
#include <string>

namespace {

using zel::storage::FileKind;
using zel::storage::FileLayer;

namespace fs = std::filesystem;

class Umask {
public:
    explicit Umask(mode_t mask) : previous(::umask(mask)) {}
    ~Umask() { ::umask(previous); }
    Umask(const Umask&) = delete;
    Umask& operator=(const Umask&) = delete;

private:
    mode_t previous;
};

struct PosixFileLayerTest : testing::TestWithParam<mode_t> {
    testing_host::TemporaryProfile profile;
    FileLayer& layer = FileLayer::disk();
    const std::string path = (profile.config() / "name").string();
    FileLayer::Handle handle = -1;
    FileKind kind = FileKind::Other;
    std::uint64_t size = 0;

    unsigned int modeOf(const std::string& name) const {
        return static_cast<unsigned int>(fs::symlink_status(name).permissions());
    }
};

TEST_P(PosixFileLayerTest, FilesAndFoldersAreAccessibleToTheirOwnerOnlyWithAnyUmask) {
    const Umask umask(GetParam());
    ASSERT_EQ(layer.createFile(path, handle), 0);
    EXPECT_EQ(layer.close(handle), 0);
    EXPECT_EQ(modeOf(path), 0600U);
    ASSERT_EQ(layer.createDirectory(path + ".folder"), 0);
    EXPECT_EQ(modeOf(path + ".folder"), 0700U);
}

INSTANTIATE_TEST_SUITE_P(Umasks, PosixFileLayerTest, testing::Values(0, 022, 077, 0777));

TEST_F(PosixFileLayerTest, AnExistingFolderIsRestrictedToItsOwner) {
    fs::create_directory(path);
    fs::permissions(path, fs::perms(0755));
    ASSERT_EQ(layer.createDirectory(path), 0);
    EXPECT_EQ(modeOf(path), 0700U);
}

TEST_F(PosixFileLayerTest, CreatingAFolderAtThePathOfAFileFailsAndKeepsTheFile) {
    testing_host::writeFile(path, "");
    fs::permissions(path, fs::perms(0640));
    EXPECT_EQ(layer.createDirectory(path), EEXIST);
    EXPECT_EQ(modeOf(path), 0640U);
}

TEST_F(PosixFileLayerTest, CreatingAFileDoesNotFollowALink) {
    fs::create_symlink(profile.data() / "elsewhere", path);
    EXPECT_EQ(layer.createFile(path, handle), EEXIST);
    EXPECT_FALSE(fs::exists(profile.data() / "elsewhere"));
}

TEST_F(PosixFileLayerTest, ReportsKindAndSizeOfAnOpenedFile) {
    testing_host::writeFile(path, "abc");
    ASSERT_EQ(layer.openForReading(path, handle, kind, size), 0);
    EXPECT_EQ(kind, FileKind::Regular);
    EXPECT_EQ(size, 3U);
    layer.close(handle);
    ASSERT_EQ(layer.openForReading(profile.config().string(), handle, kind, size), 0);
    EXPECT_EQ(kind, FileKind::Directory);
    layer.close(handle);
    ASSERT_EQ(::mkfifo((path + ".pipe").c_str(), 0600), 0);
    ASSERT_EQ(layer.openForReading(path + ".pipe", handle, kind, size), 0);
    EXPECT_EQ(kind, FileKind::Other);
    layer.close(handle);
}

TEST_F(PosixFileLayerTest, LockingALockedDirectoryTimesOut) {
    using std::chrono::milliseconds;
    const std::string directory = profile.config().string();
    zel::storage::FileLayer::Handle held = -1;
    ASSERT_EQ(layer.lockDirectory(directory, milliseconds(0), held), 0);
    EXPECT_EQ(layer.lockDirectory(directory, milliseconds(0), handle), ETIMEDOUT);
    EXPECT_EQ(layer.lockDirectory(directory, milliseconds(25), handle), ETIMEDOUT);
    layer.close(held);
    ASSERT_EQ(layer.lockDirectory(directory, milliseconds(0), handle), 0);
    layer.close(handle);
}

TEST_F(PosixFileLayerTest, ReturnsTheErrorsOfThePlatform) {
    std::size_t count = 0;
    char byte = 0;
    EXPECT_EQ(layer.openForReading(path, handle, kind, size), ENOENT);
    EXPECT_EQ(layer.read(-1, &byte, 1, count), EBADF);
    EXPECT_EQ(layer.write(-1, "a", count), EBADF);
    EXPECT_EQ(layer.sync(-1), EBADF);
    EXPECT_EQ(layer.close(-1), EBADF);
    EXPECT_EQ(layer.rename(path, path + "2"), ENOENT);
    EXPECT_EQ(layer.link(path, path + "2"), ENOENT);
    EXPECT_EQ(layer.unlink(path), ENOENT);
    EXPECT_EQ(layer.createDirectory(path + "/a/b"), ENOENT);
    EXPECT_EQ(layer.syncDirectory(path), ENOENT);
    EXPECT_EQ(layer.lockDirectory(path, std::chrono::milliseconds(0), handle), ENOENT);
}

} // namespace
