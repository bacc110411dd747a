#include "Program.h"

#include <TemporaryProfile.h>
#include <gmock/gmock.h>

namespace program_test {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

/// The commands that show values; none of them asks for secrets.
const std::vector<Arguments> reads{{"list"}, {"dump", "--effective"}, {"report"},
                                   {"log"},  {"--json", "list"},      {"diff"}};

void expectNoSecret(const Profile& profile, const Arguments& arguments) {
    const auto outcome = profile.run(arguments);
    EXPECT_THAT(outcome.out + outcome.error, Not(HasSubstr("planted-"))) << testing::PrintToString(arguments);
}

} // namespace

TEST(SensitiveKeys, AreThoseOfTheFleetWithoutItsService) {
    const Profile profile;
    for (const std::string key : {"FleetConnectionPassword", "FleetConnectionUsername"}) {
        const auto outcome = profile.run({"set", key, "-"}, "planted-secret");
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(outcome.error, key + " set; in force: \"VALUE_HIDDEN\" from LocalFileConfigStore\n");
        EXPECT_EQ(profile.run({"get", key}).out, "VALUE_HIDDEN\n");
        EXPECT_EQ(profile.run({"--show-secrets", "get", key}).out, "planted-secret\n");
    }
    for (const auto& arguments : reads) {
        expectNoSecret(profile, arguments);
    }
    expectNoSecret(profile, {"dump"});
    EXPECT_THAT(testing_host::readFile(profile.root() / "state/lumora-config.log"), Not(HasSubstr("planted-")));
    const auto session = profile.shell({"memory FleetConnectionPassword planted-1", "observe FleetConnectionPassword",
                                        "set FLEETCONNECTIONPASSWORD planted-2", "report", "log"});
    EXPECT_THAT(session.out, Not(HasSubstr("planted-")));
}

TEST(SensitiveKeys, ArePoliciesThatLookLikePasswordsFromTheStart) {
    const Profile profile;
    profile.writePolicy("MyConnectionPasswordOld", "planted-secret");
    EXPECT_EQ(profile.run({"get", "MyConnectionPasswordOld"}).out, "VALUE_HIDDEN\n");
    EXPECT_EQ(profile.run({"--show-secrets", "get", "MyConnectionPasswordOld"}).out, "planted-secret\n");
    for (const auto& arguments : reads) {
        expectNoSecret(profile, arguments);
    }
    expectNoSecret(profile, {"dump", "--store", "RegistryConfigStore"});
}

TEST(SensitiveKeys, AreThoseThatADeviceManagementDocumentMarks) {
    const Profile profile;
    const auto file = profile.writeDocument("mdm.xml", "<Own sensitive=\"true\">planted-1</Own><Other>shown</Other>");
    const auto session = profile.shell({"mdm " + file, "get Own", "get Other", "list", "refresh", "report", "log"});
    EXPECT_THAT(session.out, AllOf(HasSubstr("VALUE_HIDDEN\nshown\n"), Not(HasSubstr("planted-"))));
}

} // namespace program_test
