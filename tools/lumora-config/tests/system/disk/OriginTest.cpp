#include "Program.h"

#include <Patterns.h>
#include <gmock/gmock.h>

#include <chrono>

namespace program_test {

using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing_host::MatchesRegex;

namespace {

constexpr auto time = "[0-9]+-[0-9]+-[0-9]+T[0-9]+:[0-9]+:[0-9]+Z";

class OriginTest : public testing::Test {
protected:
    json originOf(const std::string& key, const Arguments& options = {}) const {
        Arguments arguments{"--json", "get", key};
        arguments.insert(arguments.begin(), options.begin(), options.end());
        return profile.run(arguments).lines().at(0).at("origin");
    }

    json at(const std::filesystem::path& file, std::size_t line) const {
        return {{"file", file.string()}, {"line", line}};
    }

    const Profile profile;
};

} // namespace

TEST_F(OriginTest, ADefaultComesFromALineOfTheDefaultsFile) {
    const auto line = lineOf(profile.defaultsFile(), "\"Theme\"");
    ASSERT_GT(line, 1U);
    EXPECT_EQ(originOf("theme"), at(profile.defaultsFile(), line));
    EXPECT_EQ(profile.run({"get", "Theme", "--origin"}).out, "system  (lumora-config-defaults.xml, " +
                                                                 profile.defaultsFile().string() + ":" +
                                                                 std::to_string(line) + ")\n");
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "system\n");
}

TEST_F(OriginTest, APolicyComesFromTheLineOfTheFileThatSetsItLast) {
    const std::string header = "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\Policies\\"
                               "Ventrix Systems, Inc.\\Unified Communications\\VentrixUC]\r\n";
    const auto first = profile.root() / "data/registry/10-first.reg";
    const auto second = profile.root() / "data/registry/20-second.reg";
    std::filesystem::create_directories(first.parent_path());
    profile.write("data/registry/10-first.reg", header + "\"A\"=\"1\"\r\n\"B\"=\"1\"\r\n");
    profile.write("data/registry/20-second.reg", header + "; a comment\r\nrubbish\r\n\"B\"=\"2\"\r\n");
    EXPECT_EQ(originOf("A"), at(first, 4));
    EXPECT_EQ(originOf("B"), at(second, 6));
}

TEST_F(OriginTest, AUsersValueComesFromALineOfTheEncryptedFile) {
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    const auto origin = originOf("Theme");
    EXPECT_EQ(origin.at("file"), (profile.root() / "config" / "lumoraLocalConfig.dat").string());
    EXPECT_GE(origin.at("line"), 1);
}

TEST_F(OriginTest, ADocumentComesFromItsFileAndThenFromTheCachedCopy) {
    const auto file = profile.write("doc.xml", "<doc>\n<group>\n<A>1</A>\n<B>2</B>\n</group>\n</doc>\n");
    EXPECT_EQ(originOf("B", {"--store", file + ":Doc:40:cache"}), at(file, 4));
    const auto origin = originOf("B");
    EXPECT_EQ(origin.at("file"), (profile.root() / "config" / "Cache" / "cachedDoc.dat").string());
    EXPECT_GE(origin.at("line"), 1);
}

TEST_F(OriginTest, ADocumentThatARefreshDroppedComesFromTheCopy) {
    const auto file = profile.write("doc.xml", "<doc><group><A>1</A></group></doc>");
    const auto outcome =
        profile.shell({"get A --origin", "refresh", "get A --origin"}, {"--store", file + ":Doc:40:cache"});
    EXPECT_THAT(outcome.out, MatchesRegex("1  \\(Doc, .*doc.xml:1\\)\n1  \\(Doc, .*cachedDoc.dat:[0-9]+\\)\n"));
}

TEST_F(OriginTest, AnInstallersValueComesFromTheLastLineOfItsKey) {
    const auto file = profile.write("boot.properties", "# A: 0\nA: 1\nB: 1\na: 2\n");
    EXPECT_EQ(originOf("A", {"--bootstrap", file + ":10"}), at(file, 4));
    EXPECT_EQ(originOf("B", {"--bootstrap", file + ":10"}), at(file, 3));
}

TEST_F(OriginTest, AValueInMemoryHasTheTimeOfTheCommand) {
    const auto outcome = profile.shell({"memory A 1", "get A --origin"});
    EXPECT_THAT(outcome.out,
                MatchesRegex("1  \\(InMemoryConfigStore, set in memory at " + std::string(time) + "\\)\n"));
}

TEST_F(OriginTest, ADerivedValueComesFromTheService) {
    const auto origin = originOf(
        "Telephony_Enabled", {"--store", profile.writeDocument("a.xml", "<TFTPPrimaryServer>a</TFTPPrimaryServer>") +
                                             ":TFTPConfigStore:40"});
    EXPECT_EQ(origin, (json{{"how", "set by the service in this run"}}));
}

TEST_F(OriginTest, AValueOfDeviceManagementHasTheTimeAndTheLineOfTheDocument) {
    const auto file = profile.write("mdm.xml", "<doc>\n<group>\n<A>1</A>\n</group>\n</doc>\n");
    const auto outcome = profile.shell({"mdm " + file, "get A --origin"});
    EXPECT_THAT(outcome.out, MatchesRegex("1  \\(MdmConfigStore, pushed by device management at " + std::string(time) +
                                          ", " + file + ":3\\)\n"));
}

TEST_F(OriginTest, AProvisionedValueHasTheTimeOfItsFileInALaterRun) {
    ASSERT_EQ(profile.run({"provision", "lumora://provision?ServicesDomain=example.net"}).exitCode, 0);
    const auto copy = profile.root() / "config" / "Cache" / "cachedUrlProvisioningConfigStore.dat";
    const std::chrono::sys_seconds day = std::chrono::sys_days{std::chrono::year{2021} / 3 / 4};
    std::filesystem::last_write_time(copy, std::chrono::file_clock::from_sys(day));
    const auto origin = originOf("ServicesDomain");
    EXPECT_EQ(origin.at("how"), "set by a provisioning URL");
    EXPECT_EQ(origin.at("when"), "2021-03-04T00:00:00Z");
    EXPECT_EQ(origin.at("file"), copy.string());
}

TEST_F(OriginTest, AProvisionedValueHasTheTimeOfTheCommandInTheSameRun) {
    const auto outcome =
        profile.shell({"provision lumora://provision?ServicesDomain=example.net", "get ServicesDomain --origin"});
    EXPECT_THAT(outcome.out, MatchesRegex("example.net  \\(UrlProvisioningConfigStore, set by a provisioning URL at " +
                                          std::string(time) + ", .*cachedUrlProvisioningConfigStore.dat:[0-9]+\\)\n"));
}

TEST_F(OriginTest, AValueUnderAnOldNameComesFromTheLineOfTheOldName) {
    const auto file = profile.write("doc.xml", "<doc><group>\n<TftpServer1>a</TftpServer1>\n</group></doc>\n");
    EXPECT_EQ(originOf("TFTPPrimaryServer", {"--store", file + ":Doc:40"}), at(file, 2));
}

TEST_F(OriginTest, TheExplanationContainsTheOriginOfEveryStoresValue) {
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    const auto object = profile.run({"--json", "explain", "Theme"}).lines().at(0);
    EXPECT_THAT(object.at("origin").at("file"), HasSubstr("lumoraLocalConfig.dat"));
    EXPECT_EQ(object.at("administrator").at("origin").at("file"), profile.defaultsFile().string());
    EXPECT_EQ(object.at("stores").back().at("holds").front().at("origin").at("file"), profile.defaultsFile().string());
}

TEST_F(OriginTest, AValueOfADeletedFileHasAnUnknownOrigin) {
    const auto file = profile.write("doc.xml", "<doc><group><A>1</A></group></doc>");
    RunningShell shell(profile);
    shell.send("add-store " + file + ":Doc:40");
    shell.receive();
    std::filesystem::remove(file);
    shell.send("get A");
    EXPECT_EQ(shell.receive().at("origin"), nullptr);
}

} // namespace program_test
