#include "PrivateFiles.h"
#include "TemporaryProfile.h"

#include <kyr/FileAccess.h>

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <cerrno>

namespace {

namespace fs = std::filesystem;
using KyrCoreUtils::FileAccess;

} // namespace

TEST(FileAccess, ReportsTheCurrentUserAsOwnerOfHisDirectory) {
    const testing_host::TemporaryProfile profile;
    const auto access = FileAccess::read(profile.root().string());
    ASSERT_TRUE(access);
    EXPECT_EQ(access->owner, FileAccess::Owner::Self);
    const auto* user = getpwuid(geteuid());
    EXPECT_EQ(access->ownerName, user == nullptr ? std::to_string(geteuid()) : user->pw_name);
}

TEST(FileAccess, ReportsWhetherEverybodyCanWrite) {
    const testing_host::TemporaryProfile profile;
    const auto folder = profile.root() / "open";
    fs::create_directory(folder);
    testing_host::letEverybodyRead(folder);
    EXPECT_FALSE(FileAccess::read(folder.string())->writableByEverybody);
    EXPECT_FALSE(FileAccess::read(folder.string())->writableByOthers);
    EXPECT_TRUE(FileAccess::read(folder.string())->usableByOthers);
    testing_host::letEverybodyWrite(folder);
    EXPECT_TRUE(FileAccess::read(folder.string())->writableByEverybody);
    EXPECT_TRUE(FileAccess::read(folder.string())->writableByOthers);
    EXPECT_TRUE(FileAccess::read(folder.string())->usableByOthers);
}

TEST(FileAccess, FollowsALink) {
    const testing_host::TemporaryProfile profile;
    testing_host::letEverybodyWrite(profile.config());
    fs::create_directory_symlink(profile.config(), profile.root() / "link");
    EXPECT_TRUE(FileAccess::read((profile.root() / "link").string())->writableByEverybody);
}

TEST(FileAccess, DistinguishesTheGroupFromEverybody) {
    const testing_host::TemporaryProfile profile;
    fs::permissions(profile.config(), fs::perms::owner_all | fs::perms::group_write);
    const auto access = FileAccess::read(profile.config().string());
    ASSERT_TRUE(access);
    EXPECT_FALSE(access->writableByEverybody);
    EXPECT_TRUE(access->writableByOthers);
    EXPECT_TRUE(access->usableByOthers);
}

TEST(FileAccess, RestrictToOwnerTakesTheRightsFromOthers) {
    const testing_host::TemporaryProfile profile;
    const auto file = profile.root() / "\xC3\xA9.txt";
    testing_host::writeFile(file, "x");
    testing_host::letEverybodyWrite(file);
    EXPECT_EQ(FileAccess::restrictToOwner(file.string()), 0);
    const auto access = FileAccess::read(file.string());
    ASSERT_TRUE(access);
    EXPECT_FALSE(access->usableByOthers);
    EXPECT_TRUE(testing_host::isPrivate(file));
    EXPECT_EQ(testing_host::readFile(file), "x");
    EXPECT_EQ(FileAccess::restrictToOwner((profile.root() / "absent").string()), ENOENT);
}

TEST(FileAccess, ReportsRootAsAdministratorToOtherUsers) {
    const auto access = FileAccess::read("/");
    ASSERT_TRUE(access);
    EXPECT_EQ(access->owner, geteuid() == 0 ? FileAccess::Owner::Self : FileAccess::Owner::Administrator);
}

TEST(FileAccess, DistinguishesAnotherUserFromTheCurrentOne) {
    const testing_host::TemporaryProfile profile;
    const auto folder = profile.root() / "foreign";
    fs::create_directory(folder);
    constexpr uid_t namelessUser = 1234567;
    if (chown(folder.c_str(), namelessUser, static_cast<gid_t>(-1)) != 0) {
        GTEST_SKIP() << "only root can change the owner of a directory";
    }
    const auto access = FileAccess::read(folder.string());
    ASSERT_TRUE(access);
    EXPECT_EQ(access->owner, FileAccess::Owner::Other);
    EXPECT_EQ(access->ownerName, "1234567");
}

TEST(FileAccess, ReturnsNothingForAMissingFile) {
    const testing_host::TemporaryProfile profile;
    EXPECT_FALSE(FileAccess::read((profile.root() / "absent").string()));
}
