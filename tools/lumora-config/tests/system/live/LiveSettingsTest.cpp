#include "ArchiveReader.h"
#include "RunningProgram.h"

#include <TemporaryProfile.h>
#include <gmock/gmock.h>

#include <csignal>
#include <fstream>

namespace program_test {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr auto announcement = "this is the running client, process ";

/// Compares the answers of a running client with those of the program alone.
class LiveSettings : public testing::Test {
protected:
    std::string write(const std::string& name, const std::string& content) const {
        return profile.write(name, content);
    }

    const Profile profile;
};

TEST_F(LiveSettings, DumpAndDiffPrintWhatTheyPrintWithoutAClient) {
    profile.writePolicy("Note", "policy");
    ASSERT_EQ(profile.run({"load", "-"}, "Theme = \"dark\"\nNote = \"mine\"\n").exitCode, 0);
    ASSERT_EQ(profile.run({"set", "connectionpassword", "planted-secret"}).exitCode, 0);
    const auto file = write("other.dump", "# lumora-config dump: user\nTheme = \"light\"\n"
                                          "connectionpassword = secret \"other-secret\"\n");
    const auto report = write("report.json", profile.run({"--json", "report"}).out);
    const std::vector<Arguments> commands{{"dump"},
                                          {"dump", "th*"},
                                          {"dump", "--effective"},
                                          {"dump", "--store", "RegistryConfigStore"},
                                          {"dump", "--store", "None"},
                                          {"--json", "dump"},
                                          {"diff"},
                                          {"diff", file},
                                          {"diff", report},
                                          {"--json", "diff", file, profile.root().string()}};
    std::vector<Outcome> before;
    for (const auto& command : commands) {
        before.push_back(profile.run(command));
    }
    RunningProgram client(profile, {"serve"});
    client.receive();
    for (std::size_t i = 0; i < commands.size(); ++i) {
        const auto outcome = profile.run(commands[i]);
        EXPECT_EQ(outcome.out, before[i].out) << commands[i].back();
        EXPECT_EQ(outcome.exitCode, before[i].exitCode) << commands[i].back();
        EXPECT_THAT(outcome.out, Not(HasSubstr("planted-secret")));
    }
    EXPECT_THAT(profile.run({"dump"}).error, HasSubstr(announcement));
    const auto secrets = (profile.root() / "secrets.dump").string();
    ASSERT_EQ(profile.run({"--show-secrets", "dump", "-o", secrets}).exitCode, 0);
    EXPECT_THAT(testing_host::readFile(secrets), HasSubstr("planted-secret"));
}

TEST_F(LiveSettings, LoadedValuesAreOnTheDiskWhenTheyAreReported) {
    std::string dump = "Large = \"" + std::string(700'000, 'x') + "\"\n";
    for (int i = 0; i < 3000; ++i) {
        dump += "Key" + std::to_string(i) + " = \"" + std::string(500, 'y') + "\"\n";
    }
    const auto file = write("large.dump", dump);
    {
        RunningProgram client(profile, {"serve"});
        client.receive();
        EXPECT_THAT(profile.run({"load", "--dry-run", file}).error,
                    HasSubstr("3001 values would be set: 3001 added, 0 changed, 0 unchanged\n"));
        EXPECT_EQ(profile.run({"get", "Large"}).exitCode, 1);
        const auto loaded = profile.run({"load", file});
        ASSERT_EQ(loaded.exitCode, 0) << loaded.error;
        EXPECT_THAT(loaded.error, AllOf(HasSubstr(announcement), HasSubstr("3001 values set: 3001 added")));
    } // killed
    EXPECT_EQ(profile.run({"get", "Large"}).out.size(), 700'001U);
    EXPECT_EQ(profile.run({"get", "Key2999"}).out.size(), 501U);
}

TEST_F(LiveSettings, LoadSetsNothingIfOneValueIsRefused) {
    RunningProgram client(profile, {"serve", "--no-changes"});
    client.receive();
    EXPECT_EQ(profile.run({"load", "-"}, "Note = \"x\"\n").exitCode, 1);
    EXPECT_EQ(profile.run({"load", "-"}, "Note = \"x\"\nAllowUrlProvisioning = \"0\"\n").exitCode, 1);
    EXPECT_EQ(profile.run({"get", "Note"}).exitCode, 1);
}

TEST_F(LiveSettings, DiffWithOperandsSaysThatItAsksTheClient) {
    const auto file = write("other.dump", "# lumora-config dump: user\nTheme = \"light\"\n");
    EXPECT_THAT(profile.run({"diff", file}).error, Not(HasSubstr(announcement)));
    RunningProgram client(profile, {"serve"});
    client.receive();
    for (const Arguments& command :
         {Arguments{"diff", file}, {"diff", profile.root().string()}, {"diff", file, profile.root().string()}}) {
        EXPECT_THAT(profile.run(command).error, HasSubstr(announcement)) << command.back();
    }
    EXPECT_THAT(profile.run({"--offline", "diff", file}).error, Not(HasSubstr(announcement)));
}

TEST_F(LiveSettings, DiffOpensTheProfileThatNoClientUses) {
    const Profile other;
    ASSERT_EQ(other.run({"set", "Theme", "dark"}).exitCode, 0);
    RunningProgram client(profile, {"serve"});
    client.receive();
    const Arguments operands{"diff", profile.root().string(), other.root().string()};
    EXPECT_THAT(runProcess(LUMORA_CONFIG_PROGRAM, operands).out,
                HasSubstr("+theme = \"dark\"  # LocalFileConfigStore"));
    const auto offline = profile.run({"--offline", "diff", other.root().string()});
    EXPECT_EQ(offline.exitCode, 1) << offline.error;
    EXPECT_THAT(offline.out, HasSubstr("theme"));
}

TEST_F(LiveSettings, TheBundleOfAClientContainsItsChainAndNoSecret) {
    ASSERT_EQ(profile.run({"set", "connectionpassword", "planted-users-secret"}).exitCode, 0);
    ASSERT_EQ(profile.run({"set", "Note", "see planted-users-secret"}).exitCode, 0);
    const auto document =
        profile.writeDocument("live.xml", "<OwnSecret sensitive=\"true\">planted-document</OwnSecret>");
    RunningProgram client(profile, {"--store", document + ":Live:40", "serve"});
    client.receive();
    std::ofstream(profile.root() / "state/lumora-config.log", std::ios::app) << "sent planted-document to it\n";
    const auto path = (profile.root() / "problem.zip").string();
    const auto outcome = profile.run({"bundle", "-o", path});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_THAT(outcome.error, HasSubstr(announcement));
    const auto members = readArchive(path);
    EXPECT_GE(members.size(), 9U);
    for (const auto& [name, content] : members) {
        EXPECT_THAT(content, Not(HasSubstr("planted"))) << name;
    }
    EXPECT_THAT(members.at("explain.json"), HasSubstr(R"("name":"Live")"));
    EXPECT_THAT(members.at("list.json"), HasSubstr(R"("value":"see VALUE_HIDDEN")"));
    EXPECT_THAT(members.at("log/lumora-config.log"), HasSubstr("sent VALUE_HIDDEN to it"));
    EXPECT_THAT(members.at("versions.json"), Not(HasSubstr(R"("client":null)")));
}

} // namespace
} // namespace program_test
