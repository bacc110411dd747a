#include "secure/FilePermissions.h"

#include <PrivateFiles.h>
#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace ZelUnified {

namespace fs = std::filesystem;

TEST(FilePermissions, RestrictToOwnerSetsMode0600) {
    const testing_host::TemporaryProfile profile;
    const auto file = profile.root() / "\xC3\xA9.txt";
    testing_host::writeFile(file, "x");
    testing_host::letEverybodyWrite(file);
    restrictToOwner(file.string());
    EXPECT_TRUE(testing_host::isPrivate(file));
    EXPECT_NO_THROW(restrictToOwner((profile.root() / "absent").string()));
}

TEST(FilePermissions, CreateForOwnerWritesTheContentWithMode0600) {
    const testing_host::TemporaryProfile profile;
    const auto file = profile.root() / "new.txt";
    const std::string content(100'000, 'x');
    createForOwner(file.string(), content);
    EXPECT_EQ(testing_host::readFile(file), content);
    EXPECT_TRUE(testing_host::isPrivate(file));
}

TEST(FilePermissions, CreateForOwnerWritesNothingIfTheNameExists) {
    const testing_host::TemporaryProfile profile;
    const auto file = profile.root() / "old.txt";
    testing_host::writeFile(file, "old");
    createForOwner(file.string(), "new");
    EXPECT_EQ(testing_host::readFile(file), "old");
    EXPECT_NO_THROW(createForOwner((profile.root() / "absent" / "file").string(), "new"));
}

TEST(FilePermissions, CreateForOwnerDoesNotFollowALink) {
    const testing_host::TemporaryProfile profile;
    const auto link = profile.root() / "link.txt";
    fs::create_symlink(profile.root() / "target.txt", link);
    createForOwner(link.string(), "new");
    EXPECT_FALSE(fs::exists(profile.root() / "target.txt"));
}

} // namespace ZelUnified
