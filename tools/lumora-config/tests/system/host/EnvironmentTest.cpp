#include "ProfileSnapshot.h"
#include "Program.h"

#include <Patterns.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>

#include <sstream>

namespace program_test {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing_host::ContainsRegex;

TEST(Environment, AMissingPlugInIsReportedWithItsFolder) {
    const Profile profile;
    const auto empty = profile.root() / "empty";
    fs::create_directory(empty);
    const auto outcome = profile.run({"--plugin-dir", empty.string(), "stores"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.error, HasSubstr("no plug-in " LUMORA_PLUGIN_FILE ": it is not in " + empty.string()));
}

TEST(Environment, AMissingPlugInFolderAndAFileAtItsPathAreReported) {
    const Profile profile;
    const auto absent = (profile.root() / "absent").string();
    EXPECT_THAT(profile.run({"--plugin-dir", absent, "stores"}).error,
                HasSubstr("no plug-in " LUMORA_PLUGIN_FILE ": there is no folder " + absent));
    profile.write("file", "no folder");
    const auto file = (profile.root() / "file").string();
    EXPECT_THAT(profile.run({"--plugin-dir", file, "stores"}).error,
                HasSubstr("no plug-in " LUMORA_PLUGIN_FILE ": " + file + " is not a folder"));
}

TEST(Environment, AHealthyRunLogsNoErrorOfTheProgram) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    std::istringstream log(profile.run({"-v", "get", "Theme"}).error);
    std::vector<std::string> troubles;
    for (std::string line; std::getline(log, line);) {
        if (line.find(" error [") != std::string::npos || line.find(" warning [") != std::string::npos) {
            troubles.push_back(line);
        }
    }
    // The service itself reads before it is started, and misses a file without which it was never started.
    EXPECT_THAT(troubles, ElementsAre(HasSubstr("ConfigAdapter::getConfig Config FeatureSet Not Started"),
                                      HasSubstr("Failed to read XML document: cachedUrlProvisioningConfigStore.dat")));
}

TEST(Environment, APlugInThatCannotBeLoadedIsNamed) {
    const Profile profile;
    profile.write("broken/" LUMORA_PLUGIN_FILE, "no library");
    const auto outcome = profile.run({"--plugin-dir", (profile.root() / "broken").string(), "stores"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.error, HasSubstr(LUMORA_PLUGIN_FILE));
}

TEST(Environment, AFolderWithoutADefaultsFileIsRefusedAndNotChanged) {
    const Profile profile;
    fs::remove(profile.defaultsFile());
    const auto outcome = profile.run({"explain", "TftpServer1"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.error, AllOf(HasSubstr("no defaults file"), HasSubstr(profile.defaultsFile().string())));
    EXPECT_FALSE(fs::exists(profile.root() / "config"));
    EXPECT_FALSE(fs::exists(profile.root() / "state"));
}

TEST(Environment, ADefaultsFileThatCannotBeReadIsRefused) {
    const Profile profile;
    fs::remove(profile.defaultsFile());
    fs::create_directory(profile.defaultsFile());
    const auto outcome = profile.run({"stores"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.error, AllOf(HasSubstr("not a regular file"), HasSubstr(profile.defaultsFile().string())));
    EXPECT_TRUE(fs::is_directory(profile.defaultsFile()));
}

TEST(Environment, ADefaultsFileThatIsNotXmlIsKeptUnderItsQuarantineName) {
    const Profile profile;
    const auto kept = profile.root() / "resources" / "lumora-config-defaults-backup.xml";
    testing_host::writeFile(profile.defaultsFile(), "<Lumora><userConfig name=");
    const auto outcome = profile.run({"set", "Theme", "dark"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.error, AllOf(HasSubstr("not XML"), HasSubstr(kept.string())));
    EXPECT_EQ(testing_host::readFile(kept), "<Lumora><userConfig name=");
    EXPECT_FALSE(fs::exists(profile.defaultsFile()));

    const auto again = profile.run({"get", "Theme"});
    EXPECT_EQ(again.exitCode, 3);
    EXPECT_THAT(again.error, AllOf(HasSubstr("no defaults file"), HasSubstr(kept.string())));
}

/// The ways in which a defaults file can be unusable, with what the program says of each.
class UnusableDefaults : public testing::TestWithParam<std::pair<const char*, const char*>> {
protected:
    UnusableDefaults() {
        EXPECT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
        const std::string content = GetParam().first;
        fs::remove(profile.defaultsFile());
        if (content == "a folder") {
            fs::create_directory(profile.defaultsFile());
        } else if (!content.empty()) {
            testing_host::writeFile(profile.defaultsFile(), content);
        }
    }

    const Profile profile;
};

TEST_P(UnusableDefaults, DoNotPreventAReportAndAreNamed) {
    const auto page = (profile.root() / "page.html").string();
    const auto before = takeSnapshot(profile.root());
    const auto report = profile.run({"report"});
    EXPECT_EQ(report.exitCode, 0);
    EXPECT_THAT(report.out, AllOf(HasSubstr("<theme>dark</theme>"), HasSubstr("</AllConfigs>")));
    EXPECT_THAT(report.error, AllOf(HasSubstr(profile.defaultsFile().string()), HasSubstr(GetParam().second),
                                    HasSubstr("the values of this file are missing")));
    EXPECT_EQ(takeSnapshot(profile.root()), before);
    EXPECT_EQ(profile.run({"report", "--html", page}).exitCode, 0);
    EXPECT_THAT(testing_host::readFile(page), AllOf(HasSubstr(GetParam().second), HasSubstr("\"dark\"")));
    EXPECT_EQ(profile.run({"get", "Theme"}).exitCode, 3) << "a single value could be wrong";
}

TEST_P(UnusableDefaults, AreFoundByDoctor) {
    const auto doctor = profile.run({"doctor"});
    EXPECT_EQ(doctor.exitCode, 1);
    EXPECT_THAT(doctor.out,
                ContainsRegex("! +defaults +[^ ]*lumora-config-defaults.xml +" + std::string(GetParam().second)));
}

INSTANTIATE_TEST_SUITE_P(Environment, UnusableDefaults,
                         testing::Values(std::pair("<Lumora><userConfig name=", "not XML, see line 1"),
                                         std::pair("", "no defaults file"),
                                         std::pair("a folder", "not a regular file")));

TEST(Environment, ADamagedUserFileIsKeptWhenItIsReplaced) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    testing_host::writeFile(profile.root() / "config" / "lumoraLocalConfig.dat", "damaged");
    ASSERT_EQ(profile.run({"set", "Theme", "light"}).exitCode, 0);
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "light\n");
    EXPECT_EQ(testing_host::readFile(profile.root() / "config" / "lumoraLocalConfig.dat.unreadable"), "damaged");
}

TEST(Environment, AForeignFileThatIsMissingUnreadableOrNotXmlIsNamed) {
    const Profile profile;
    const auto broken = profile.write("broken.xml", "<a>\n<b>planted-secret</c></a>");
    const auto absent = (profile.root() / "absent.xml").string();
    const std::vector<std::pair<std::string, std::string>> cases{
        {absent, "no such file"}, {profile.root().string(), "not a regular file"}, {broken, "not XML, see line 2"}};
    for (const auto& [file, reason] : cases) {
        const auto outcome = profile.run({"--store", file + ":A:40", "stores"});
        EXPECT_EQ(outcome.exitCode, 3) << file;
        EXPECT_EQ(outcome.out, "") << file;
        EXPECT_THAT(outcome.error, AllOf(HasSubstr(file), HasSubstr(reason)));
        EXPECT_THAT(outcome.error, testing::Not(HasSubstr("planted-secret")));
    }
    EXPECT_TRUE(fs::exists(broken));
}

TEST(Environment, AMissingBootstrapFileIsNamed) {
    const Profile profile;
    const auto absent = (profile.root() / "absent").string();
    const auto outcome = profile.run({"--bootstrap", absent + ":700", "stores"});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.error, AllOf(HasSubstr(absent), HasSubstr("no such file")));
}

TEST(Environment, AChangeOfAProfileInUseNamesTheProcessThatHoldsIt) {
    const Profile profile;
    {
        const RunningShell holder(profile);
        const auto outcome = profile.run({"set", "Theme", "dark"});
        EXPECT_EQ(outcome.exitCode, 3);
        EXPECT_EQ(outcome.out, "");
        EXPECT_THAT(outcome.error,
                    AllOf(HasSubstr("in use"), HasSubstr("process " + std::to_string(holder.getProcess()))));
    }
    EXPECT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
}

TEST(Environment, LogLinesArePrintedOnlyIfRequested) {
    const Profile profile;
    EXPECT_EQ(profile.run({"get", "Theme"}).error, "");
    EXPECT_THAT(profile.run({"-v", "get", "Theme"}).error, HasSubstr("starting config feature set"));
}

} // namespace program_test
