#include <kyr/LocalListener.h>

#include <TemporaryProfile.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

namespace KyrCoreUtils {
namespace {

TEST(LocalListener, RestrictsAnOpenDirectoryAndRefusesALinkToOne) {
    using std::filesystem::perms;
    const testing_host::TemporaryProfile profile;
    const auto open = profile.root() / "open";
    std::filesystem::create_directory(open);
    std::filesystem::permissions(open, perms::all);
    const LocalListener listener((open / "s.sock").string());
    EXPECT_EQ(listener.getError(), 0);
    EXPECT_EQ(std::filesystem::status(open).permissions(), perms::owner_all);
    std::filesystem::create_directory_symlink(open, profile.root() / "link");
    const LocalListener behindLink((profile.root() / "link" / "t.sock").string());
    EXPECT_EQ(behindLink.getError(), EPERM);
}

} // namespace
} // namespace KyrCoreUtils
