#include "host/HostFolders.h"

#include "output/Failure.h"

#include <PrivateFiles.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>

namespace lumora_config {

using KyrCoreUtils::FileAccess;
using testing::HasSubstr;

namespace fs = std::filesystem;

TEST(DirectoryTrust, AcceptsDirectoriesOfTheUserAndOfRoot) {
    EXPECT_EQ(findReasonForDistrust({FileAccess::Owner::Self, "me", false}), "");
    EXPECT_EQ(findReasonForDistrust({FileAccess::Owner::Administrator, "root", false}), "");
}

TEST(DirectoryTrust, RejectsADirectoryOfAnotherUser) {
    EXPECT_EQ(findReasonForDistrust({FileAccess::Owner::Other, "mallory", false}), "belongs to another user, mallory");
    EXPECT_EQ(findReasonForDistrust({FileAccess::Owner::Other, "", true}), "its owner cannot be read");
}

TEST(DirectoryTrust, RejectsADirectoryThatEverybodyMayWrite) {
    for (const auto owner : {FileAccess::Owner::Self, FileAccess::Owner::Administrator}) {
        EXPECT_EQ(findReasonForDistrust({owner, "x", true}), "can be written by everybody");
    }
}

TEST(DirectoryTrust, AcceptsADirectoryThatDoesNotExist) {
    const testing_host::TemporaryProfile profile;
    EXPECT_NO_THROW(requireTrusted({(profile.root() / "absent").string()}));
}

TEST(DirectoryTrust, ChecksEveryDirectory) {
    const testing_host::TemporaryProfile profile;
    const auto open = profile.root() / "open";
    fs::create_directory(open);
    testing_host::letEverybodyWrite(open);
    try {
        requireTrusted({profile.root().string(), open.string()});
        FAIL() << "nothing was thrown";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.getCode(), ExitCode::Environment);
        EXPECT_THAT(failure.what(), HasSubstr(open.string() + ": can be written by everybody; --trust"));
    }
}

} // namespace lumora_config
