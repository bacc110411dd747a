#include "StorageProfile.h"
#include "zel/storage/KeyProtection.h"

#include <kyr/FileAccess.h>
#include <zel/FileLayer.h>

#include <PrivateFiles.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <string>

namespace {

using zel::storage::FileKind;
using zel::storage::FileLayer;
using zel::storage::KeyProtection;
using zel::storage::KeyResult;
using zel::storage::MasterKey;

namespace fs = std::filesystem;

struct WindowsFileLayerTest : testing::Test {
    testing_host::TemporaryProfile profile;
    FileLayer& layer = FileLayer::platform();
    const std::string path = (profile.config() / "name").string();
    FileLayer::Handle handle = -1;
    FileLayer::Handle other = -1;
    FileKind kind = FileKind::Other;
    std::uint64_t size = 0;

    void write(std::string_view text) {
        ASSERT_EQ(layer.createFile(path, handle), 0);
        std::size_t count = 0;
        EXPECT_EQ(layer.write(handle, text, count), 0);
        EXPECT_EQ(count, text.size());
        EXPECT_EQ(layer.sync(handle), 0);
        EXPECT_EQ(layer.close(handle), 0);
    }
};

TEST_F(WindowsFileLayerTest, WritesBytesWithoutTranslation) {
    write("a\r\nb\n\x1A");
    EXPECT_EQ(testing_host::readFile(path), "a\r\nb\n\x1A");
    ASSERT_EQ(layer.openForReading(path, handle, kind, size), 0);
    EXPECT_EQ(kind, FileKind::Regular);
    EXPECT_EQ(size, 6U);
    EXPECT_EQ(layer.close(handle), 0);
}

TEST_F(WindowsFileLayerTest, NamesAreUtf8) {
    const std::string name = (profile.config() / "").string() + "\xC3\xA4\xF0\x9F\x98\x80";
    ASSERT_EQ(layer.createFile(name, handle), 0);
    EXPECT_EQ(layer.close(handle), 0);
    EXPECT_TRUE(fs::exists(profile.config() / L"\u00e4\U0001F600"));
    EXPECT_EQ(layer.unlink(name), 0);
    EXPECT_TRUE(fs::is_empty(profile.config()));
}

TEST_F(WindowsFileLayerTest, ANameThatExistsIsNotCreatedAgain) {
    write("text");
    EXPECT_EQ(layer.createFile(path, handle), EEXIST);
    EXPECT_EQ(layer.link(path, path), EEXIST);
    EXPECT_EQ(layer.openForReading(path + "x", handle, kind, size), ENOENT);
}

TEST_F(WindowsFileLayerTest, ADirectoryIsRecognised) {
    ASSERT_EQ(layer.openForReading(profile.config().string(), handle, kind, size), 0);
    EXPECT_EQ(kind, FileKind::Directory);
    EXPECT_EQ(layer.close(handle), 0);
}

TEST_F(WindowsFileLayerTest, ADirectoryCannotBeLinked) {
    EXPECT_EQ(layer.link(profile.config().string(), path), EPERM);
    EXPECT_EQ(layer.link(path, path + "x"), ENOENT);
}

TEST_F(WindowsFileLayerTest, ASecondLockOfADirectoryWaitsForTheFirst) {
    const std::string folder = profile.config().string();
    ASSERT_EQ(layer.lockDirectory(folder, std::chrono::milliseconds(0), handle), 0);
    EXPECT_EQ(layer.lockDirectory(folder, std::chrono::milliseconds(0), other), ETIMEDOUT);
    EXPECT_EQ(layer.lockDirectory(folder, std::chrono::milliseconds(30), other), ETIMEDOUT);
    EXPECT_EQ(layer.close(handle), 0);
    ASSERT_EQ(layer.lockDirectory(folder, std::chrono::milliseconds(0), other), 0);
    EXPECT_EQ(layer.close(other), 0);
    EXPECT_TRUE(fs::is_empty(folder)) << "a lock leaves nothing";
}

TEST_F(WindowsFileLayerTest, CreatedFilesBelongToTheUserAndAreNotAccessibleToAll) {
    write("text");
    ASSERT_EQ(layer.createDirectory(path + ".folder"), 0);
    for (const auto& name : {path, path + ".folder"}) {
        const auto access = KyrCoreUtils::FileAccess::read(name);
        ASSERT_TRUE(access) << name;
        EXPECT_EQ(access->owner, KyrCoreUtils::FileAccess::Owner::Self) << name;
        EXPECT_FALSE(access->writableByEverybody) << name;
        EXPECT_FALSE(access->usableByOthers) << name;
        EXPECT_TRUE(testing_host::isPrivate(name)) << name;
    }
}

TEST(KeyProtection, AWrappedKeyIsEncryptedAndUnwrapsToTheSameKey) {
    MasterKey key;
    std::fill_n(key.data(), MasterKey::length, static_cast<unsigned char>('k'));
    std::string wrapped;
    ASSERT_TRUE(KeyProtection::wrap(key, wrapped));
    EXPECT_EQ(wrapped.find(std::string(MasterKey::length, 'k')), std::string::npos);
    MasterKey read;
    ASSERT_EQ(KeyProtection::unwrap(wrapped, read), KeyResult::Found);
    EXPECT_TRUE(std::equal(key.data(), key.data() + MasterKey::length, read.data()));
}

TEST(KeyProtection, ChangedBytesCannotBeUnwrapped) {
    const MasterKey key;
    std::string wrapped;
    ASSERT_TRUE(KeyProtection::wrap(key, wrapped));
    wrapped.back() = static_cast<char>(wrapped.back() ^ 1);
    MasterKey read;
    EXPECT_NE(KeyProtection::unwrap(wrapped, read), KeyResult::Found);
    EXPECT_NE(KeyProtection::unwrap("", read), KeyResult::Found);
}

} // namespace
