#include "ProfileSnapshot.h"
#include "Program.h"

#include <TemporaryProfile.h>
#include <gmock/gmock.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <future>
#include <map>
#include <ostream>
#include <set>
#include <sstream>

namespace program_test {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::HasSubstr;
using testing::IsSupersetOf;
using testing::Not;

namespace {

constexpr int wrongUsage = 2;
constexpr int environmentError = 3;
const std::string usersFile = "config/lumoraLocalConfig.dat";
const std::string usersBackup = "config/lumoraLocalConfig_backup.dat";

/// Returns the names of all commands, as the program completes them.
std::set<std::string> listCommands() {
    const auto outcome = runProcess(LUMORA_CONFIG_PROGRAM, {"complete", "--", ""});
    std::set<std::string> names;
    std::istringstream lines(outcome.out);
    for (std::string line; std::getline(lines, line);) {
        if (const auto end = line.find('\t'); end != std::string::npos) {
            names.insert(line.substr(0, end));
        }
    }
    return names;
}

/// The commands that change the profile, run until they are ended, or are for a running client only.
const std::set<std::string> changingCommands{"set",   "reset",   "provision",    "reset-provisioning",
                                             "mdm",   "restore", "remove-store", "reset-data",
                                             "shell", "serve",   "memory",       "refresh"};

/// They fail here, because they need a running client or a cluster.
const std::set<std::string> commandsOfOtherProcesses{"fleet", "watch"};

/// Files that commands read and write, outside of the profile.
class Workplace {
public:
    Workplace() {
        testing_host::writeFile(getPath("dump.txt"), "");
        testing_host::writeFile(getPath("policy.reg"),
                                "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\Policies"
                                "\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC]\r\n\"Theme\"=\"x\"\r\n");
        testing_host::writeFile(
            getPath("store.xml"),
            "<Config><Group><Customize_Phone_Server>false</Customize_Phone_Server></Group></Config>");
    }

    std::string getPath(const std::string& name) const { return (profile.root() / name).string(); }

private:
    const Profile profile;
};

/// Returns the lines to run for the command. A command without an entry is run without arguments, so that a new one is
/// covered.
std::vector<Arguments> getLines(const std::string& command, const Profile& profile, const Workplace& files) {
    const std::map<std::string, std::vector<Arguments>> lines{
        {"get",
         {{"Theme"},
          {"VoicemailPrimaryServer", "--origin"},
          {"Theme", "--admin"},
          {"--store", files.getPath("store.xml") + ":Foreign:25", "TFTPPrimaryServer"},
          {"Theme", "--store", "LocalFileConfigStore"}}},
        {"explain", {{"Theme"}}},
        {"list", {{}, {"--sensitive"}, {"--store", "LocalFileConfigStore"}}},
        {"describe", {{"Theme"}}},
        {"report", {{}, {"-o", files.getPath("report.xml")}, {"--html", files.getPath("report.html")}}},
        {"bundle", {{"-o", files.getPath("bundle.zip"), "--force"}}},
        {"fleet", {{"list", "--plain-http", "--endpoint", "http://127.0.0.1:1"}}},
        {"dump", {{}, {"--effective"}, {"-o", files.getPath("out.txt")}}},
        {"diff", {{}, {files.getPath("dump.txt")}, {profile.root().string(), files.getPath("")}}},
        {"load", {{"--dry-run", files.getPath("dump.txt")}}},
        {"import-policy", {{"--dry-run", files.getPath("policy.reg")}}},
        {"completion", {{"bash"}}},
        {"complete", {{"--", "--profile", profile.root().string(), "get", ""}}}};
    const auto found = lines.find(command);
    return found == lines.end() ? std::vector<Arguments>{{}} : found->second;
}

/// The states of a profile in which the service writes, moves or removes files when it starts.
struct State {
    std::string name;
    std::function<void(const Profile&)> prepare;

    friend std::ostream& operator<<(std::ostream& stream, const State& state) { return stream << state.name; }
};

void damage(const Profile& profile, const std::string& file) {
    profile.write(file, "damaged");
}

/// Adds what an earlier version or a killed process may have left.
void leaveOldFiles(const Profile& profile) {
    profile.write("config/RegistryConfigStore.txt", "Theme: of a policy that no longer exists\n");
    profile.write("config/Cache/cachedForeign.xml", "<Lumora><CachedConfig><A>b</A></CachedConfig></Lumora>");
    profile.write("data/registry/old.reg", "REGEDIT4\r\n\r\n[HKEY_CURRENT_USER\\Software\\Other]\r\n\"A\"=\"b\"\r\n");
    const fs::path temporary = profile.write("config/.lumoraLocalConfig.dat.0123456789abcdef.tmp", "unfinished");
    fs::last_write_time(temporary, fs::file_time_type::clock::now() - std::chrono::hours(1));
}

const std::vector<State>& getStates() {
    static const std::vector<State> states{
        {"healthy", [](const Profile&) {}},
        {"with a policy that removes a setting",
         [](const Profile& profile) { profile.writePolicy("Customize_Voicemail_Server", "false"); }},
        {"with a damaged file", [](const Profile& profile) { damage(profile, usersFile); }},
        {"with a damaged backup", [](const Profile& profile) { damage(profile, usersBackup); }},
        {"with damaged files and copies",
         [](const Profile& profile) {
             damage(profile, usersFile);
             damage(profile, usersBackup);
             damage(profile, "config/Cache/cachedForeign.dat");
         }},
        {"with other keys", [](const Profile& profile) { fs::remove_all(profile.root() / "data/keys"); }},
        {"with an outdated record",
         [](const Profile& profile) {
             profile.run({"set", "ProductMode", "Phone_Mode"});
             profile.run({"set", "PrimaryConfigStores", "PresenceConfigStore:31;Foreign:40;"});
         }},
        {"with old files", leaveOldFiles},
        {"with a link instead of a file",
         [](const Profile& profile) {
             fs::rename(profile.root() / usersFile, profile.root() / "elsewhere.dat");
             fs::create_symlink("../elsewhere.dat", profile.root() / usersFile);
         }},
        {"without a configuration directory",
         [](const Profile& profile) { fs::remove_all(profile.root() / "config"); }},
        {"without any directory", [](const Profile& profile) {
             for (const auto* folder : {"config", "data", "state"}) {
                 fs::remove_all(profile.root() / folder);
             }
         }}};
    return states;
}

std::string join(const Arguments& words) {
    std::string text;
    for (const auto& word : words) {
        text += word + ' ';
    }
    return text;
}

} // namespace

/// A profile with settings of the user, a copy of a store, and its state.
class UntouchedProfile : public testing::TestWithParam<State> {
protected:
    UntouchedProfile() {
        const auto document = files.getPath("first.xml");
        testing_host::writeFile(document, "<Config><Group><FromServer>x</FromServer></Group></Config>");
        profile.run({"--store", document + ":Foreign:40:cache", "set", "Theme", "dark"});
        profile.run({"set", "TFTPPrimaryServer", "tftp.example.org"});
        profile.run({"set", "VoicemailPrimaryServer", "voicemail.example.org"});
    }

    Outcome run(const Arguments& arguments) const {
        return arguments.front() == "complete" ? runProcess(LUMORA_CONFIG_PROGRAM, arguments) : profile.run(arguments);
    }

    const Workplace files;
    const Profile profile;
};

TEST_P(UntouchedProfile, IsTheSameAfterEachCommandThatOnlyReads) {
    GetParam().prepare(profile);
    auto commands = listCommands();
    ASSERT_THAT(commands, IsSupersetOf({"get", "doctor", "report", "shell", "import-policy"}));
    commands.insert("complete");
    const auto before = takeSnapshot(profile.root());
    for (const auto& command : commands) {
        if (changingCommands.contains(command)) {
            continue;
        }
        for (auto line : getLines(command, profile, files)) {
            line.insert(line.begin(), command);
            const auto outcome = run(line);
            EXPECT_NE(outcome.exitCode, wrongUsage) << join(line) << outcome.error;
            EXPECT_TRUE(outcome.exitCode != environmentError || commandsOfOtherProcesses.contains(command))
                << join(line) << outcome.error;
            ASSERT_EQ(takeSnapshot(profile.root()), before) << join(line);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(States, UntouchedProfile, testing::ValuesIn(getStates()), [](const auto& instance) {
    auto name = instance.param.name;
    std::erase(name, ' ');
    return name;
});

/// A profile with one setting of the user.
class ReadingBesideOthers : public testing::Test {
protected:
    ReadingBesideOthers() { EXPECT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0); }

    const Profile profile;
};

TEST_F(ReadingBesideOthers, TheServiceSeesItsOwnChangesInOneRun) {
    ASSERT_EQ(profile.run({"set", "VoicemailPrimaryServer", "voicemail.example.org"}).exitCode, 0);
    profile.writePolicy("Customize_Voicemail_Server", "false");
    EXPECT_EQ(profile.run({"get", "VoicemailPrimaryServer"}).exitCode, 1) << "the policy removes the setting";
    EXPECT_EQ(profile.run({"dump"}).out.find("voicemail"), std::string::npos);
    profile.removePolicy();
    EXPECT_EQ(profile.run({"get", "VoicemailPrimaryServer"}).out, "voicemail.example.org\n") << "in memory only";
}

TEST_F(ReadingBesideOthers, IsNotHinderedByAWriter) {
    const RunningShell writer(profile);
    for (const Arguments& command : {Arguments{"get", "Theme"}, {"describe", "Theme"}, {"dump"}, {"doctor"}}) {
        const auto outcome = profile.run(command);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
        EXPECT_THAT(outcome.out, HasSubstr(command.front() == "doctor" ? "in use by process" : "dark"));
    }
    const auto second = profile.run({"set", "Theme", "light"});
    EXPECT_EQ(second.exitCode, environmentError);
    EXPECT_THAT(second.error, HasSubstr("in use by process " + std::to_string(writer.getProcess())));
}

TEST_F(ReadingBesideOthers, DoesNotHinderAWriter) {
    std::vector<std::future<int>> readers;
    for (int reader = 0; reader < 4; ++reader) {
        readers.push_back(std::async(std::launch::async, [this] {
            int failures = 0;
            for (int run = 0; run < 10; ++run) {
                const auto outcome = profile.run({"get", "Theme"});
                failures += outcome.exitCode == 0 && (outcome.out == "dark\n" || outcome.out == "light\n") ? 0 : 1;
                failures += profile.run({"doctor"}).exitCode;
            }
            return failures;
        }));
    }
    for (int write = 0; write < 10; ++write) {
        EXPECT_EQ(profile.run({"set", "Theme", write % 2 == 0 ? "light" : "dark"}).exitCode, 0);
    }
    for (auto& reader : readers) {
        EXPECT_EQ(reader.get(), 0);
    }
}

TEST_F(ReadingBesideOthers, AStoreWithACopyStillChangesTheProfile) {
    const auto document = profile.writeDocument("resources/a.xml", "<FromServer>x</FromServer>");
    const auto outcome = profile.run({"--store", document + ":Foreign:40:cache", "get", "FromServer"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_EQ(profile.run({"get", "FromServer"}).out, "x\n");
}

TEST_F(ReadingBesideOthers, ADefaultsFileThatIsNotXmlStaysWhereItIs) {
    testing_host::writeFile(profile.defaultsFile(), "<broken");
    const auto before = takeSnapshot(profile.root());
    const auto outcome = profile.run({"get", "Theme"});
    EXPECT_EQ(outcome.exitCode, environmentError);
    EXPECT_THAT(outcome.error, AllOf(HasSubstr("not XML"), Not(HasSubstr("kept as"))));
    EXPECT_EQ(takeSnapshot(profile.root()), before);
}

/// Gives the profile to a user without privileges and takes away the permission to write, until destroyed.
class WithoutWriteAccess {
public:
    static constexpr uid_t nobody = 65534;

    explicit WithoutWriteAccess(const Profile& target) : profile(target) {
        for (const auto& entry : fs::recursive_directory_iterator(profile.root())) {
            entries.push_back(entry.path());
        }
        entries.push_back(profile.root());
        for (const auto& path : entries) {
            const auto all = fs::is_directory(path) ? fs::perms(0500) : fs::perms(0400);
            fs::permissions(path, all);
            if (::geteuid() == 0) {
                EXPECT_EQ(::lchown(path.c_str(), nobody, nobody), 0);
            }
        }
    }
    ~WithoutWriteAccess() {
        std::ranges::reverse(entries); // a folder before its content
        for (const auto& path : entries) {
            std::error_code ignored;
            fs::permissions(path, fs::perms(0700), ignored);
        }
    }
    WithoutWriteAccess(const WithoutWriteAccess&) = delete;
    WithoutWriteAccess& operator=(const WithoutWriteAccess&) = delete;

    /// Runs the program as that user.
    Outcome run(const Arguments& arguments) const {
        Arguments all{"--profile", profile.root().string()};
        all.insert(all.end(), arguments.begin(), arguments.end());
        if (::geteuid() != 0) {
            return runProcess(LUMORA_CONFIG_PROGRAM, all);
        }
        const auto user = std::to_string(nobody);
        all.insert(all.begin(), {"--reuid=" + user, "--regid=" + user, "--clear-groups", LUMORA_CONFIG_PROGRAM});
        return runProcess("/usr/bin/setpriv", all);
    }

private:
    const Profile& profile;
    std::vector<fs::path> entries;
};

TEST_F(ReadingBesideOthers, AProfileThatCannotBeWrittenIsRead) {
    profile.writePolicy("Theme_Policy", "x");
    const WithoutWriteAccess user(profile);
    if (user.run({"--version"}).exitCode != 0) {
        GTEST_SKIP() << "another user cannot run the program on this machine";
    }
    const auto before = takeSnapshot(profile.root());
    for (const Arguments& command :
         {Arguments{"get", "Theme"}, {"explain", "Theme"}, {"dump"}, {"report", "--html", "-"}}) {
        const auto outcome = user.run(command);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
        EXPECT_EQ(outcome.error, "");
        EXPECT_THAT(outcome.out, HasSubstr("dark"));
    }
    EXPECT_EQ(takeSnapshot(profile.root()), before);
    EXPECT_EQ(user.run({"set", "Theme", "light"}).exitCode, environmentError);
}

} // namespace program_test
