#include "Program.h"

#include <PrivateFiles.h>
#include <gmock/gmock.h>
#include <unistd.h>

namespace program_test {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;

namespace {

const std::string interfaceName = "example::DirectoryService";

Outcome runWithPlugin(const Profile& profile, const std::string& plugin, Arguments arguments) {
    arguments.insert(arguments.begin(), {"--plugin", plugin});
    return profile.run(arguments);
}

/// Returns a copy of the library in a folder of the profile.
fs::path copyLibrary(const Profile& profile) {
    const auto folder = profile.root() / "libraries";
    fs::create_directory(folder);
    fs::copy_file(LUMORA_FOREIGN_LIBRARY, folder / "foreign.so");
    return folder / "foreign.so";
}

void expectRefused(const Profile& profile, const fs::path& library, const fs::path& culprit,
                   const std::string& reason) {
    const auto outcome = runWithPlugin(profile, interfaceName + "=" + library.string(), {"get", "Theme"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.error, "lumora-config: " + culprit.string() + ": " + reason + "; --trust accepts it\n");
}

constexpr auto open = "can be written by everybody";

} // namespace

TEST(ForeignPlugin, ObservesTheKeysThatTheProgramSets) {
    const Profile profile;
    const Arguments write{"-v", "set", "Presence_Server_Address", "presence.example"};
    const auto without = profile.run(write);
    EXPECT_EQ(without.error.find("ExampleDirectoryService"), std::string::npos);
    ASSERT_EQ(profile.run({"reset", "Presence_Server_Address"}).exitCode, 0);

    const auto with = runWithPlugin(profile, interfaceName + "=" LUMORA_FOREIGN_LIBRARY, write);
    EXPECT_EQ(with.exitCode, 0);
    EXPECT_THAT(with.error,
                AllOf(HasSubstr("Loaded plug-in " + fs::absolute(LUMORA_FOREIGN_LIBRARY).lexically_normal().string()),
                      HasSubstr("ExampleDirectoryService"), HasSubstr("Presence_Server_Address has changed")));
}

TEST(ForeignPlugin, TwoInterfacesOfOneLibraryAreAccepted) {
    const Profile profile;
    const auto outcome = runWithPlugin(profile, interfaceName + "=" LUMORA_FOREIGN_LIBRARY,
                                       {"--plugin", "example::Another=" LUMORA_FOREIGN_LIBRARY, "get", "Theme"});
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.out, "system\n");
}

TEST(ForeignPlugin, ALibraryThatCannotBeLoadedIsNamed) {
    const Profile profile;
    const auto absent = (profile.root() / "absent.so").string();
    profile.write("broken.so", "no library");
    const auto broken = (profile.root() / "broken.so").string();
    for (const auto& library : {absent, broken}) {
        const auto outcome = runWithPlugin(profile, interfaceName + "=" + library, {"get", "Theme"});
        EXPECT_EQ(outcome.exitCode, 3);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.error, HasSubstr("--plugin " + interfaceName + ": Can't load plug-in " + library));
    }
}

TEST(ForeignPlugin, AnInterfaceOfTheProgramItselfIsRefused) {
    const Profile profile;
    for (const std::string own : {"ZelUnified::ConfigService", "ZelUnified::ConfigFeatureSet"}) {
        const auto outcome = runWithPlugin(profile, own + "=" LUMORA_FOREIGN_LIBRARY, {"get", "Theme"});
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_THAT(outcome.error, HasSubstr(own));
    }
}

TEST(ForeignPlugin, AMalformedDescriptionIsAnErrorOfUsage) {
    const Profile profile;
    for (const auto* malformed : {"library.so", "=library.so", "example::DirectoryService="}) {
        const auto outcome = runWithPlugin(profile, malformed, {"get", "Theme"});
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_THAT(outcome.error, HasSubstr("'" + std::string(malformed) + "' is not of the form NAME=LIBRARY"));
    }
}

TEST(ForeignPlugin, ALibraryThatEverybodyMayWriteIsRefused) {
    const Profile profile;
    const auto library = copyLibrary(profile);
    testing_host::letEverybodyWrite(library);
    expectRefused(profile, library, library, open);
    EXPECT_EQ(runWithPlugin(profile, interfaceName + "=" + library.string(), {"--trust", "get", "Theme"}).out,
              "system\n");
}

TEST(ForeignPlugin, ALibraryInAFolderThatEverybodyMayWriteIsRefused) {
    const Profile profile;
    const auto library = copyLibrary(profile);
    testing_host::letEverybodyWrite(library.parent_path());
    expectRefused(profile, library, library.parent_path(), open);
}

TEST(ForeignPlugin, ALibraryOfAnotherUserIsRefused) {
    const Profile profile;
    const auto library = copyLibrary(profile);
    constexpr uid_t namelessUser = 1234567;
    if (chown(library.c_str(), namelessUser, static_cast<gid_t>(-1)) != 0) {
        GTEST_SKIP() << "only root can change the owner of a file";
    }
    expectRefused(profile, library, library, "belongs to another user, " + std::to_string(namelessUser));
}

} // namespace program_test
