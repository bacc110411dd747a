#include "ArchiveReader.h"
#include "Program.h"

#include <kyr/ProcessUtils.h>

#include <Patterns.h>
#include <PrivateFiles.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>

#include <fstream>

namespace program_test {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

namespace fs = std::filesystem;

constexpr auto recordStart = "2026-01-02 03:04:05.678 info [Logger] Name::of ";

std::string getPath(const Profile& profile) {
    return (profile.root() / "problem.zip").generic_string();
}

void appendToLog(const Profile& profile, const std::string& text) {
    fs::create_directories(profile.root() / "state");
    std::ofstream(profile.root() / "state/lumora-config.log", std::ios::app) << text << '\n';
}

std::string encodeBase64(std::string_view bytes) {
    constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    unsigned bits = 0;
    unsigned count = 0;
    for (const char byte : bytes) {
        bits = bits << 8U | static_cast<unsigned char>(byte);
        for (count += 8; count >= 6; count -= 6) {
            text += digits[bits >> (count - 6) & 63U];
        }
    }
    return text; // without the digit that depends on what follows
}

/// Returns the forms in which a file may contain the secret.
std::vector<std::string> listForms(const std::string& secret) {
    std::vector<std::string> forms{secret};
    std::string low;
    std::string high;
    for (const char c : secret) {
        low += c;
        low += '\0';
        high += '\0';
        high += c;
    }
    forms.push_back(low);
    forms.push_back(high);
    // The digits at the edges depend on the neighbours of the secret.
    for (std::size_t offset = 0; offset < 3; ++offset) {
        forms.push_back(encodeBase64(std::string(offset, 'x') + secret).substr(offset == 0 ? 0 : offset + 1));
    }
    return forms;
}

/// A profile whose sources contain secrets.
class PlantedSecrets {
public:
    PlantedSecrets() {
        run({"set", "connectionpassword", "planted-users-secret"});
        run({"set", "Note", "see planted-users-secret here"});
        run({"provision", "https://example.org/?ServicesDomain=planted-provisioned.example"});
        profile.writePolicy("connectionusername", "planted-policy-secret");
        run({"--store",
             profile.writeDocument("cached.xml", "<BDIConnectionPassword>planted-cached-secret"
                                                 "</BDIConnectionPassword>") +
                 ":Cached:41:cache",
             "stores"});
        document = profile.writeDocument("live.xml", "<ServicesDomain sensitive=\"true\">planted-document-1"
                                                     "</ServicesDomain><OwnSecret sensitive=\"true\">"
                                                     "planted-document-2</OwnSecret>");
        const std::string start(recordStart);
        appendToLog(profile, start + "OwnSecret: planted-old-secret\nplanted-continued-secret");
        appendToLog(profile, start + "sent planted-document-2 and a password: planted-logged-secret");
        appendToLog(profile, start + "https://example.org/?bdiconnectionuserdn=planted-url-secret&x=y");
        appendToLog(profile, start + "the last line");
    }

    Outcome run(const Arguments& arguments) const {
        auto outcome = profile.run(arguments);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
        return outcome;
    }

    Profile profile;
    std::string document;
};

constexpr std::array plantedSecrets{"planted-users-secret",  "planted-provisioned.example", "planted-policy-secret",
                                    "planted-cached-secret", "planted-document-1",          "planted-document-2",
                                    "planted-old-secret",    "planted-continued-secret",    "planted-logged-secret",
                                    "planted-url-secret"};

/// Reads every member of the archive, and the archive itself.
void expectNoSecret(const std::string& path) {
    auto contents = readArchive(path);
    EXPECT_GE(contents.size(), 9U);
    contents["the archive"] = testing_host::readFile(path);
    for (const auto* secret : plantedSecrets) {
        for (const auto& form : listForms(secret)) {
            for (const auto& [name, content] : contents) {
                EXPECT_EQ(content.find(form), std::string::npos) << name << " contains " << form;
            }
        }
    }
}

} // namespace

TEST(Bundle, ContainsWhatItListsInAPrivateFile) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    const auto path = getPath(profile);
    const auto outcome = profile.run({"bundle", "-o", path});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_THAT(testing_host::readFile(path), StartsWith("PK\x03\x04"));
    EXPECT_TRUE(testing_host::isPrivate(path));
    const auto members = readArchive(path);
    std::vector<std::string> names;
    for (const auto& [name, content] : members) {
        names.push_back(name);
        EXPECT_THAT(outcome.out, HasSubstr(name));
        EXPECT_THAT(outcome.out, HasSubstr(' ' + std::to_string(content.size()) + ' ')) << name;
        if (name != "index.txt") {
            EXPECT_THAT(members.at("index.txt"), HasSubstr(name));
        }
        if (name.ends_with(".json")) {
            for (const auto& object : Outcome{0, content, ""}.lines()) {
                EXPECT_TRUE(object.contains("type")) << name;
            }
        }
    }
    EXPECT_THAT(names, ElementsAre("explain.json", "health.json", "index.txt", "list.json", "log/lumora-config.log",
                                   "page.html", "report.xml", "stores.json", "versions.json"));
    EXPECT_THAT(members.at("page.html"), StartsWith("<!DOCTYPE html>"));
    EXPECT_THAT(members.at("report.xml"), HasSubstr("<theme>dark</theme>"));
    EXPECT_THAT(members.at("explain.json"), HasSubstr(R"("newName":"theme")"));
    EXPECT_THAT(members.at("log/lumora-config.log"), HasSubstr("[ConfigService-ConfigAdapter]"));
}

TEST(Bundle, IsDescribedInJson) {
    const Profile profile;
    const auto path = getPath(profile);
    const auto answer = profile.run({"--json", "bundle", "-o", path}).lines().at(0);
    EXPECT_EQ(answer.at("type"), "bundle");
    EXPECT_EQ(answer.at("file"), path);
    const auto members = readArchive(path);
    ASSERT_EQ(answer.at("members").size(), members.size());
    for (const auto& member : answer.at("members")) {
        EXPECT_EQ(member.at("bytes"), members.at(member.at("name")).size());
    }
}

TEST(Bundle, ContainsNoSecretInAnyForm) {
    const PlantedSecrets planted;
    const auto path = getPath(planted.profile);
    planted.run({"--store", planted.document + ":Live:40", "bundle", "-o", path});
    expectNoSecret(path);
    const auto members = readArchive(path);
    // The sources were in the chain, and the rest of the log is there.
    for (const auto* store :
         {"LocalFileConfigStore", "UrlProvisioningConfigStore", "RegistryConfigStore", "Cached", "Live"}) {
        EXPECT_THAT(members.at("explain.json"), HasSubstr(std::string(R"("name":")") + store + R"(","readOnly")"));
    }
    EXPECT_THAT(members.at("list.json"), HasSubstr(R"("value":"see VALUE_HIDDEN here")"));
    EXPECT_THAT(members.at("log/lumora-config.log"), HasSubstr("Name::of the last line"));
}

TEST(Bundle, ContainsNeitherTheFleetsPasswordNorAPolicyThatLooksLikeOne) {
    const Profile profile;
    profile.writePolicy("MyConnectionPasswordOld", "planted-policy-secret");
    ASSERT_EQ(profile.run({"set", "FleetConnectionPassword", "-"}, "planted-fleet-secret").exitCode, 0);
    appendToLog(profile, std::string(recordStart) + "FleetConnectionUsername: planted-logged-secret");
    const auto path = getPath(profile);
    ASSERT_EQ(profile.run({"bundle", "-o", path}).exitCode, 0);
    for (const auto& [name, content] : readArchive(path)) {
        EXPECT_THAT(content, Not(HasSubstr("planted-"))) << name;
    }
}

TEST(Bundle, MasksPersonalDataAndTheNamesOfUserAndMachine) {
    const Profile profile;
    const auto user = KyrCoreUtils::ProcessUtils::getUserName();
    const auto host = KyrCoreUtils::ProcessUtils::getHostName();
    ASSERT_EQ(profile.run({"set", "Note", "jane@example.org in /home/jane of " + user}).exitCode, 0);
    appendToLog(profile, recordStart + ("on " + host) + " by " + user + " sip:jane@example.org");
    const auto path = getPath(profile);
    ASSERT_EQ(profile.run({"bundle", "-o", path}).exitCode, 0);
    const auto members = readArchive(path);
    for (const auto& [name, content] : members) {
        EXPECT_THAT(content, Not(HasSubstr("jane"))) << name;
    }
    EXPECT_THAT(members.at("list.json"), HasSubstr("<user>@example.org in /home/<user> of <user>"));
    EXPECT_THAT(members.at("report.xml"), HasSubstr("/home/&lt;user&gt; of &lt;user&gt;"));
    EXPECT_THAT(members.at("log/lumora-config.log"), HasSubstr("on <host> by <user> sip:<user>@example.org"));
}

TEST(Bundle, ContainsTheLogsOfTheStateFolderUnderDifferentMaskedNames) {
    const Profile profile;
    const auto user = KyrCoreUtils::ProcessUtils::getUserName();
    for (const auto& name :
         {user + ".log", std::string("\u00E4.log"), std::string("\u00F6.log"), std::string("sub/a.log")}) {
        profile.write("state/" + name, recordStart + ("the text of " + name) + '\n');
    }
    const auto path = getPath(profile);
    ASSERT_EQ(profile.run({"bundle", "-o", path}).exitCode, 0);
    std::vector<std::string> logs;
    for (const auto& [name, content] : readArchive(path)) {
        if (name.starts_with("log/")) {
            logs.push_back(name);
        }
    }
    EXPECT_THAT(logs, ElementsAre("log/__-2.log", "log/__.log", "log/_user_.log"));
}

TEST(Bundle, IsWrittenWhileTheDefaultsFileIsDamaged) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    testing_host::writeFile(profile.defaultsFile(), "<Lumora><userConfig name=");
    const auto path = getPath(profile);
    const auto outcome = profile.run({"--json", "bundle", "-o", path});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_THAT(outcome.error, HasSubstr("not XML, see line 1; the values of this file are missing"));
    EXPECT_EQ(testing_host::readFile(profile.defaultsFile()), "<Lumora><userConfig name=");
    const auto problem = outcome.lines().at(0).at("problems").at(0);
    EXPECT_EQ(problem.at("area"), "defaults");
    const auto members = readArchive(path);
    EXPECT_EQ(members.size(), 9U);
    EXPECT_THAT(
        members.at("index.txt"),
        testing_host::ContainsRegex("\nneeds attention: defaults .*lumora-config-defaults.xml: not XML, see line 1"));
    for (const auto* name : {"health.json", "page.html"}) {
        EXPECT_THAT(members.at(name), HasSubstr("not XML, see line 1")) << name;
    }
    EXPECT_THAT(members.at("list.json"), HasSubstr("\"value\":\"dark\""));
    EXPECT_THAT(members.at("log/lumora-config.log"), HasSubstr("[ConfigService-ConfigAdapter]"));
    EXPECT_THAT(members.at("versions.json"), HasSubstr("libxml2"));
}

TEST(Bundle, ReplacesAFileOnlyIfItIsForced) {
    const Profile profile;
    const auto path = profile.write("problem.zip", "precious");
    const auto refused = profile.run({"bundle", "-o", path});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_THAT(refused.error, HasSubstr("problem.zip exists; --force replaces it"));
    EXPECT_EQ(testing_host::readFile(path), "precious");
    EXPECT_EQ(profile.run({"bundle", "-o", path, "--force"}).exitCode, 0);
    EXPECT_THAT(testing_host::readFile(path), StartsWith("PK"));
    EXPECT_EQ(profile.run({"bundle", "-o", (profile.root() / "none/a.zip").string()}).exitCode, 3);
    EXPECT_EQ(profile.run({"--show-secrets", "bundle", "-o", path, "--force"}).exitCode, 2);
}

TEST(Bundle, NamesTheProfileAndTheTimeInTheWorkingDirectoryByDefault) {
    const Profile profile;
    const auto folder = profile.root() / "working";
    fs::create_directory(folder);
    const auto outcome = runProcess("/bin/sh", {"-c", R"(cd "$0" && exec "$@")", folder.string(), LUMORA_CONFIG_PROGRAM,
                                                "--profile", profile.root().string(), "bundle"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.error;
    const auto name = fs::directory_iterator(folder)->path().filename().string();
    EXPECT_THAT(name, testing_host::MatchesRegex("lumora-config-[A-Za-z0-9_-]+-[0-9]+T[0-9]+Z\\.zip"));
    EXPECT_THAT(outcome.out, StartsWith(name + '\n'));
}

TEST(Bundle, TheShellWritesTheSameMembers) {
    const Profile profile;
    const auto outcome = profile.shell({"memory Note x", "bundle -o " + getPath(profile)});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_THAT(readArchive(getPath(profile)).at("stores.json"), HasSubstr("InMemoryConfigStore"));
}

} // namespace program_test
