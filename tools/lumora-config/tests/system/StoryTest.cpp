#include "Program.h"

#include <registry/RegistryFiles.h>

#include <gmock/gmock.h>

#include <map>

namespace program_test {

using testing::HasSubstr;

namespace {

constexpr const char* key = "InvalidCertificateBehavior";

/// Uses one profile in many runs of the program, from the installation to the last change by the device management.
class Story : public testing::Test {
protected:
    /// Returns the value in a run without documents of a server.
    std::string valueOf(const std::string& name) const { return profile.run({"get", name, "--origin"}).out; }
    /// Returns the value in a run in which a server delivers a document.
    std::string valueWith(const std::string& store) const {
        return profile.run({"--store", store, "get", key, "--origin"}).out;
    }
    std::string document(const std::string& name, const std::string& value) const {
        return profile.writeDocument(name, "<" + std::string(key) + ">" + value + "</" + key + ">");
    }
    /// Sets the value in the registry of the system, or imports a policy file if it has none.
    void importPolicy(const std::string& fileName, const std::string& name, const std::string& value) const {
        if (zel::registry::getAdministratorRegistryFolder().empty()) {
            profile.writePolicy(name, value);
            return;
        }
        const auto outcome = profile.run(
            {"import-policy",
             profile.write(fileName,
                           "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\Policies"
                           "\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC]\r\n\"" +
                               name + "\"=\"" + value + "\"\r\n")});
        EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    }
    void set(const std::string& name, const std::string& value) const {
        EXPECT_EQ(profile.run({"set", name, value}).exitCode, 0);
    }
    /// Returns the value of the key in each store.
    std::map<std::string, std::string> opinions() const {
        std::map<std::string, std::string> found;
        const auto explanation = profile.run({"--json", "explain", key}).lines().at(0);
        for (const auto& store : explanation.at("stores")) {
            for (const auto& holding : store.at("holds")) {
                found[store.at("name")] = holding.at("value");
            }
        }
        return found;
    }

    void sourcesComeAndGo() const;
    void theUserHasTheFirstWord() const;
    void aSwitchTakesTheUsersServers() const;
    void aLinkProvisionsOnce() const;
    void deviceManagementForbidsIt() const;

    const Profile profile;
    const std::string link = "lumora://provision?ServicesDomain=example.org";
};

void Story::sourcesComeAndGo() const {
    EXPECT_THAT(valueOf(key), testing::StartsWith("PromptPerSession  (lumora-config-defaults.xml, "));
    importPolicy("branch.reg", key, "policy");
    EXPECT_THAT(valueOf(key), testing::StartsWith("policy  " + originOfPolicy()));
    EXPECT_THAT(valueWith(document("behind.xml", "behind") + ":Behind:100:cache"),
                testing::StartsWith("policy  " + originOfPolicy()));
    EXPECT_THAT(valueWith(document("front.xml", "front") + ":Front:30:cache"), testing::StartsWith("front  (Front, "));
    EXPECT_THAT(valueOf(key), testing::StartsWith("front  (Front, "));
}

void Story::theUserHasTheFirstWord() const {
    set(key, "mine");
    EXPECT_THAT(valueOf(key), testing::StartsWith("mine  (LocalFileConfigStore, "));
    EXPECT_EQ(opinions(), (std::map<std::string, std::string>{{"LocalFileConfigStore", "mine"},
                                                              {"Front", "front"},
                                                              {"RegistryConfigStore", "policy"},
                                                              {"Behind", "behind"},
                                                              {"lumora-config-defaults.xml", "PromptPerSession"}}));
    const auto before = profile.run({"get", key, "--admin"}).out;
    EXPECT_EQ(profile.run({"reset", key}).exitCode, 0);
    EXPECT_EQ(before, "front\n");
    EXPECT_THAT(valueOf(key), testing::StartsWith("front  (Front, "));
    EXPECT_EQ(profile.run({"remove-store", "Front"}).exitCode, 0);
    EXPECT_THAT(valueOf(key), testing::StartsWith("policy  " + originOfPolicy()));
}

void Story::aSwitchTakesTheUsersServers() const {
    for (const auto* server : {"TFTPPrimaryServer", "CtiServer1", "SabrelServer1"}) {
        set(server, "mine.example");
    }
    EXPECT_THAT(valueOf("CtiServer1"),
                testing::StartsWith("mine.example  (LocalFileConfigStore, under its old name, "));
    importPolicy("servers.reg", "Customize_Phone_Server", "false");
    for (const auto* server : {"TFTPPrimaryServer", "CtiServer1", "SabrelServer1"}) {
        EXPECT_EQ(profile.run({"get", server}).exitCode, 1) << server;
    }
    set("Theme", "dark"); // commands that only read do not write the user's file
    // Removing the switch does not restore the settings: they are deleted from the user's file.
    importPolicy("servers.reg", "Customize_Phone_Server", "true");
    EXPECT_EQ(profile.run({"get", "CtiServer1"}).exitCode, 1);
}

void Story::aLinkProvisionsOnce() const {
    EXPECT_EQ(profile.run({"provision", link}).exitCode, 0);
    EXPECT_THAT(valueOf("ServicesDomain"), testing::StartsWith("example.org  (UrlProvisioningConfigStore, "));
    const auto again = profile.run({"provision", "lumora://provision?ServicesDomain=example.net"});
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_THAT(again.error, HasSubstr("AllowUrlProvisioning is false"));
    EXPECT_THAT(valueOf("ServicesDomain"), testing::StartsWith("example.org  (UrlProvisioningConfigStore, "));
}

void Story::deviceManagementForbidsIt() const {
    ASSERT_EQ(profile.run({"reset-provisioning"}).exitCode, 0);
    const auto push = profile.writeDocument("mdm.xml", "<AllowUrlProvisioning>false</AllowUrlProvisioning>");
    const auto outcome = profile.shell(
        {"mdm " + push, "provision " + link, "reset-provisioning", "provision " + link, "refresh"}, {"--json"});
    EXPECT_EQ(outcome.exitCode, 1);
    std::vector<std::string> answers;
    for (const auto& line : outcome.lines()) {
        answers.push_back(std::string(line.at("command")) + " " + std::string(line.at("type")));
    }
    EXPECT_THAT(answers, testing::ElementsAre("mdm done", "provision failure", "reset-provisioning failure",
                                              "provision failure", "refresh done"));
    // The refresh has removed the settings of an earlier link and their copy.
    EXPECT_EQ(profile.run({"get", "ServicesDomain"}).exitCode, 1);
}

} // namespace

TEST_F(Story, RunsFromTheInstallationOfAProfileToItsReset) {
    sourcesComeAndGo();
    theUserHasTheFirstWord();
    aSwitchTakesTheUsersServers();
    aLinkProvisionsOnce();
    deviceManagementForbidsIt();
}

} // namespace program_test
