#include "Program.h"

#include <gmock/gmock.h>

#include <cstdlib>

namespace program_test {

using testing::HasSubstr;

namespace {

std::string inTree(const std::string& path) {
    return std::string(LUMORA_SOURCE_FOLDER) + "/" + path;
}

} // namespace

TEST(Tour, RunsToItsEndAndShowsEachStep) {
    setenv("LUMORA_CONFIG", LUMORA_CONFIG_PROGRAM, 1);
    const auto outcome = runProcess("/bin/bash", {inTree("scripts/tour")});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out << outcome.error;
    for (const auto* text :
         {"RegistryConfigStore", "TftpServer1, the old name of TFTPPrimaryServer",
          "Value \"true\" -> \"false\"  [services thread]", "VALUE_HIDDEN", "<AllConfigs>", "The tour is over"}) {
        EXPECT_THAT(outcome.out, HasSubstr(text));
    }
    EXPECT_THAT(outcome.out, testing::Not(HasSubstr("not-for-the-screen")));
}

TEST(Tour, DoesNotChangeTheSampleProfile) {
    setenv("LUMORA_CONFIG", LUMORA_CONFIG_PROGRAM, 1);
    runProcess("/bin/bash", {inTree("scripts/tour")});
    EXPECT_FALSE(std::filesystem::exists(inTree("examples/profile/config")));
    EXPECT_FALSE(std::filesystem::exists(inTree("examples/profile/state")));
}

TEST(Examples, EverySampleDocumentIsAccepted) {
    const Profile profile;
    for (const auto* name : {"tftp", "presence", "mdm"}) {
        const auto file = inTree("examples/documents/" + std::string(name) + ".xml");
        const auto outcome = profile.run({"--json", "--store", file + ":Sample:40", "stores"});
        ASSERT_EQ(outcome.exitCode, 0) << outcome.error;
        EXPECT_GE(outcome.lines().at(0).at("stores").at(2).at("keys"), 3) << name;
    }
}

TEST(Examples, TheBootstrapFileIsAccepted) {
    const Profile profile;
    EXPECT_THAT(profile
                    .run({"--bootstrap", inTree("examples/documents/bootstrap.properties") + ":700", "get",
                          "ServicesDomain", "--origin"})
                    .out,
                testing::StartsWith("example.net  (BootstrapConfigStore, "));
}

} // namespace program_test
