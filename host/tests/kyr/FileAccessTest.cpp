#include "TemporaryProfile.h"

#include <kyr/FileAccess.h>

#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

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
    fs::permissions(folder, fs::perms::owner_all | fs::perms::group_all);
    EXPECT_FALSE(FileAccess::read(folder.string())->writableByEverybody);
    fs::permissions(folder, fs::perms::all);
    EXPECT_TRUE(FileAccess::read(folder.string())->writableByEverybody);
    fs::create_directory_symlink(folder, profile.root() / "link");
    EXPECT_TRUE(FileAccess::read((profile.root() / "link").string())->writableByEverybody);
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
