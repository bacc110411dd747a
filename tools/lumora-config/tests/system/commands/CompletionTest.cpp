#include "Program.h"

#include <PrivateFiles.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>

#include <map>
#include <sstream>

namespace program_test {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

namespace {

std::vector<std::string> splitLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

/// Returns the answer to a completion script: the paths line, and the candidates without descriptions.
std::vector<std::string> completeWords(Arguments words) {
    words.insert(words.begin(), {"complete", "--"});
    const auto outcome = runProcess(LUMORA_CONFIG_PROGRAM, words);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.error, "");
    auto lines = splitLines(outcome.out);
    for (auto& line : lines) {
        line = line.substr(0, line.find('\t'));
    }
    return lines;
}

std::vector<std::string> completeIn(const Profile& profile, const Arguments& words) {
    Arguments all{"--profile", profile.root().string()};
    all.insert(all.end(), words.begin(), words.end());
    return completeWords(all);
}

/// Returns the path, size and time of everything below the folder.
std::map<std::string, std::string> listTree(const fs::path& folder) {
    std::map<std::string, std::string> tree;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        std::ostringstream facts;
        facts << (entry.is_regular_file() ? testing_host::readFile(entry.path()) : "folder") << ' '
              << entry.last_write_time().time_since_epoch().count();
        tree[entry.path().string()] = facts.str();
    }
    return tree;
}

/// Returns the path of a shell, or an empty text if it is not installed.
std::string findShell(const std::string& name) {
    auto path = runProcess("/bin/sh", {"-c", "command -v " + name}).out;
    std::erase(path, '\n');
    return path;
}

/// Runs a shell with the program's folder first in PATH.
Outcome runShell(const std::string& shell, Arguments arguments) {
    const auto folder = fs::path(LUMORA_CONFIG_PROGRAM).parent_path().string();
    arguments.insert(arguments.begin(), {"-c", "PATH=" + folder + R"(:$PATH; export PATH; exec "$@")", "sh", shell});
    return runProcess("/bin/sh", arguments);
}

std::vector<std::string> completeInBash(Arguments words) {
    words.insert(words.begin(), {"-c",
                                 "source <(lumora-config completion bash)\n"
                                 "COMP_WORDS=(lumora-config \"$@\"); COMP_CWORD=$#; _lumora_config\n"
                                 "[ ${#COMPREPLY[@]} = 0 ] || printf '%s\\n' \"${COMPREPLY[@]}\"",
                                 "bash"});
    const auto outcome = runShell("bash", words);
    EXPECT_EQ(outcome.error, "");
    return splitLines(outcome.out);
}

} // namespace

TEST(Completion, TheFirstWordIsACommand) {
    const auto answer = completeWords({""});
    EXPECT_EQ(answer.at(0), ":none");
    for (const auto* command : {"get", "set", "explain", "doctor", "help", "shell", "completion"}) {
        EXPECT_THAT(answer, Contains(command));
    }
    EXPECT_THAT(answer, Not(Contains("complete")));
    EXPECT_THAT(answer, Not(Contains("observe")));
    EXPECT_THAT(completeWords({"reset-"}), ElementsAre(":none", "reset-provisioning", "reset-data"));
}

TEST(Completion, EveryCommandAndOptionOfTheHelpIsOffered) {
    const auto help = runProcess(LUMORA_CONFIG_PROGRAM, {"--help"}).out;
    std::size_t commands = 0;
    for (const auto& line : splitLines(help.substr(help.find("Subcommands:") + 13))) {
        if (!line.starts_with("  ")) {
            break;
        }
        const auto command = line.substr(2, line.find(' ', 2) - 2);
        ++commands;
        EXPECT_THAT(completeWords({""}), Contains(command));
        const auto options = completeWords({command, "-"});
        const auto commandHelp = runProcess(LUMORA_CONFIG_PROGRAM, {command, "--help"}).out;
        for (const auto& option : splitLines(commandHelp)) {
            if (const auto at = option.find("--"); option.starts_with("  -") && at != std::string::npos) {
                EXPECT_THAT(options, Contains(option.substr(at, option.find(' ', at) - at))) << command;
            }
        }
    }
    EXPECT_GT(commands, 15U);
}

TEST(Completion, OptionsAreThoseOfTheCommandAndTheCommonOnes) {
    const auto options = completeWords({"get", "--"});
    EXPECT_THAT(options, AllOf(Contains("--origin"), Contains("--profile"), Contains("--json")));
    EXPECT_THAT(options, Not(Contains("--yes")));
    EXPECT_THAT(completeWords({"--"}), Not(Contains("--origin")));
}

TEST(Completion, AnOptionThatIsGivenOrExcludedIsNotOfferedAgain) {
    EXPECT_THAT(completeWords({"get", "--admin", "--"}), AllOf(Not(Contains("--admin")), Not(Contains("--store"))));
    EXPECT_THAT(completeWords({"--profile", "x", "--"}), Not(Contains("--config-dir")));
    EXPECT_THAT(completeWords({"--bootstrap", "x", "--"}), Contains("--bootstrap"));
}

TEST(Completion, KeysOfTheProfileAreOfferedIgnoringCase) {
    const Profile profile;
    EXPECT_THAT(completeIn(profile, {"get", "THEM"}), ElementsAre(":none", "Theme"));
    ASSERT_EQ(profile.run({"set", "zetaOfTheUser", "x"}).exitCode, 0);
    profile.writePolicy("ZebraOfThePolicy", "x");
    EXPECT_THAT(completeIn(profile, {"reset", "ze"}), ElementsAre(":none", "ZebraOfThePolicy", "zetaOfTheUser"));
}

TEST(Completion, KeysOfTheCatalogueAreOfferedInItsSpellingWithTheirMeaning) {
    const auto outcome =
        runProcess(LUMORA_CONFIG_PROGRAM, {"complete", "--", "--profile", "/no/such/folder", "get", "tftps"});
    EXPECT_THAT(splitLines(outcome.out), Contains("TftpServer1\tThe primary TFTP server."));
    const Profile profile;
    profile.writePolicy("servicesdomain", "x");
    EXPECT_THAT(completeIn(profile, {"get", "servicesdomain"}),
                ElementsAre(":none", "ServicesDomain", "ServicesDomainSsoEmailPrompt"));
}

TEST(Completion, ValuesOfAKindAreOffered) {
    EXPECT_THAT(completeWords({"set", "allowurlprovisioning", ""}), ElementsAre(":none", "true", "false"));
    EXPECT_THAT(completeWords({"set", "Theme", ""}), ElementsAre(":none"));
}

TEST(Completion, StoresOfTheProfileAreOfferedIgnoringCase) {
    const Profile profile;
    const auto document = profile.writeDocument("a.xml", "<Pin>1</Pin>");
    ASSERT_EQ(profile.run({"--store", document + ":Alpha:40:cache", "stores"}).exitCode, 0);
    EXPECT_THAT(completeIn(profile, {"remove-store", "al"}), ElementsAre(":none", "Alpha"));
    EXPECT_THAT(completeIn(profile, {"get", "--store", "reg"}), ElementsAre(":none", "RegistryConfigStore"));
    EXPECT_THAT(completeIn(profile, {"get", "--store=reg"}), ElementsAre(":none", "--store=RegistryConfigStore"));
    EXPECT_THAT(completeIn(profile, {"get", "--store", "=", "reg"}), ElementsAre(":none", "RegistryConfigStore"));
}

TEST(Completion, PathsAreLeftToTheShell) {
    EXPECT_THAT(completeWords({"--profile", ""}), ElementsAre(":directories"));
    EXPECT_THAT(completeWords({"mdm", ""}), ElementsAre(":files"));
    EXPECT_THAT(completeWords({"report", "--html", ""}), ElementsAre(":files"));
}

TEST(Completion, TheLibraryOfAPluginIsAPathBehindItsName) {
    const auto complete = [](Arguments words) {
        words.insert(words.begin(), {"complete", "--"});
        return runProcess(LUMORA_CONFIG_PROGRAM, words).out;
    };
    EXPECT_EQ(complete({"--plugin", "Na"}), ":none\n");
    EXPECT_EQ(complete({"--plugin", "Name=/li"}), ":files\tName=\n");
    EXPECT_EQ(complete({"--plugin=Name=/li"}), ":files\t--plugin=Name=\n");
    for (const Arguments& start : {Arguments{"--plugin", "Name", "="}, Arguments{"--plugin", "=", "Name", "="}}) {
        EXPECT_EQ(complete(start), ":files\tName=\n");
        auto words = start;
        words.emplace_back("/li");
        EXPECT_EQ(complete(words), ":files\tName=\n");
        words.emplace_back("stor");
        EXPECT_THAT(complete(words), StartsWith(":none\nstores\t"));
    }
}

TEST(Completion, NothingIsOfferedForFreeText) {
    EXPECT_THAT(completeWords({"provision", ""}), ElementsAre(":none"));
    EXPECT_THAT(completeWords({"get", "Theme", ""}), ElementsAre(":none"));
    EXPECT_THAT(completeWords({"no-such-command", "--no-such-option", "no-such-word"}), ElementsAre(":none"));
}

TEST(Completion, TheProfileIsNotChanged) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Theme", "dark"}).exitCode, 0);
    testing_host::writeFile(profile.root() / "config" / "lumoraLocalConfig_backup.dat", "damaged");
    const auto before = listTree(profile.root());
    EXPECT_THAT(completeIn(profile, {"get", "them"}), ElementsAre(":none", "Theme"));
    EXPECT_THAT(completeIn(profile, {"remove-store", ""}), Contains("LocalFileConfigStore"));
    EXPECT_EQ(listTree(profile.root()), before);
}

TEST(Completion, AProfileInUseIsCompleted) {
    const Profile profile;
    const RunningShell holder(profile);
    EXPECT_THAT(completeIn(profile, {"get", "them"}), ElementsAre(":none", "Theme"));
}

TEST(Completion, ADamagedOrMissingProfileCausesNoMessage) {
    const Profile profile;
    testing_host::writeFile(profile.defaultsFile(), "<broken");
    EXPECT_EQ(completeIn(profile, {"get", "them"}).at(0), ":none");
    EXPECT_EQ(completeWords({"--profile", "/no/such/folder", "get", "them"}).at(0), ":none");
    EXPECT_FALSE(fs::exists("/no"));
}

TEST(Completion, AProfileThatTheProgramRefusesIsNotRead) {
    const Profile profile;
    testing_host::letEverybodyWrite(profile.root());
    EXPECT_THAT(completeIn(profile, {"get", "notificationsou"}), ElementsAre(":none"));
    EXPECT_THAT(completeIn(profile, {"--trust", "get", "notificationsou"}), ElementsAre(":none", "NotificationSounds"));
}

TEST(Completion, TheScriptOfEachShellIsPrinted) {
    for (const auto* shell : {"bash", "fish", "zsh"}) {
        const auto outcome = runProcess(LUMORA_CONFIG_PROGRAM, {"completion", shell});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_THAT(outcome.out, HasSubstr("complete --"));
    }
    const auto outcome = runProcess(LUMORA_CONFIG_PROGRAM, {"completion", "tcsh"});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(outcome.error, HasSubstr("only for bash, fish, zsh"));
}

TEST(BashCompletion, CompletesCommandsOptionsKeysStoresAndFolders) {
    const Profile profile;
    const auto root = profile.root().string();
    EXPECT_THAT(completeInBash({"reset-d"}), ElementsAre("reset-data"));
    EXPECT_THAT(completeInBash({"get", "--or"}), ElementsAre("--origin"));
    EXPECT_THAT(completeInBash({"--profile", root, "get", "them"}), ElementsAre("Theme"));
    EXPECT_THAT(completeInBash({"--profile", root, "get", "--store", "=", "reg"}), ElementsAre("RegistryConfigStore"));
    EXPECT_THAT(completeInBash({"--profile", root + "/res"}), ElementsAre(root + "/resources"));
    EXPECT_THAT(completeInBash({"--store", "a.xml", ":", "A", ":", "40", "stor"}), ElementsAre("stores"));
    EXPECT_THAT(completeInBash({"--plugin", "A", "=", root + "/res"}), ElementsAre(root + "/resources"));
    EXPECT_THAT(completeInBash({"--plugin", "A=" + root + "/res"}), ElementsAre("A=" + root + "/resources"));
}

TEST(BashCompletion, KeepsTheTypedLetters) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "zeta", "x"}).exitCode, 0);
    profile.writePolicy("ZEBRA", "x");
    const auto root = profile.root().string();
    EXPECT_THAT(completeInBash({"--profile", root, "get", "ze"}), ElementsAre("zeBRA", "zeta"));
    EXPECT_THAT(completeInBash({"--profile", root, "get", "zeb"}), ElementsAre("ZEBRA"));
}

TEST(FishCompletion, CompletesCommandsOptionsKeysStoresAndFolders) {
    const auto fish = findShell("fish");
    if (fish.empty()) {
        GTEST_SKIP() << "fish is not installed";
    }
    const Profile profile;
    const auto root = profile.root().string();
    const auto completeInFish = [&](const std::string& line) {
        const auto outcome =
            runShell(fish, {"--no-config", "-c", "lumora-config completion fish | source; complete -C '" + line + "'"});
        return splitLines(outcome.out);
    };
    EXPECT_THAT(completeInFish("lumora-config reset-d"), ElementsAre(StartsWith("reset-data\t")));
    EXPECT_THAT(completeInFish("lumora-config get --or"), ElementsAre(StartsWith("--origin\t")));
    EXPECT_THAT(completeInFish("lumora-config --profile " + root + " get them"), ElementsAre(StartsWith("Theme")));
    EXPECT_THAT(completeInFish("lumora-config --profile " + root + " get --store reg"),
                ElementsAre(StartsWith("RegistryConfigStore")));
    EXPECT_THAT(completeInFish("lumora-config --profile " + root + "/res"),
                ElementsAre(StartsWith(root + "/resources/")));
    EXPECT_THAT(completeInFish("lumora-config --plugin A=" + root + "/resources/lumora-config-def"),
                ElementsAre("A=" + profile.defaultsFile().string()));
    EXPECT_THAT(completeInFish("lumora-config no-such-command x"), IsEmpty());
}

namespace {

/// Types keys, in the quotes of zsh and with $1 for the profile, into an interactive zsh in which `prepare` has set up
/// the completion. Returns what the terminal has shown.
std::string typeIntoZsh(const std::string& zsh, const Profile& profile, const std::string& prepare,
                        const std::string& keys) {
    // The pieces of "ready" and "done" do not match the terminal's echo of the input.
    const auto script = profile.write("drive.zsh", R"(
        zmodload zsh/zpty
        zpty z 'TERM=dumb COLUMNS=1000 zsh -f -i' # the path of the profile must not wrap the line
        zpty -w z "PS1=; autoload -Uz compinit; $2; print rea''dy"
        zpty -r z line '*ready*'
        eval "zpty -w -n z $3"
        zpty -w z "; print do''ne"
        zpty -r z line '*done*'
        print -r -- $line
    )");
    const auto outcome = runShell("timeout", {"60", zsh, "-f", script, profile.root().string(), prepare, keys});
    EXPECT_EQ(outcome.exitCode, 0);
    return outcome.out;
}

} // namespace

TEST(ZshCompletion, ATabCompletesAKeyIgnoringCase) {
    const auto zsh = findShell("zsh");
    if (zsh.empty()) {
        GTEST_SKIP() << "zsh is not installed";
    }
    const Profile profile;
    const std::string installed = "fpath=(" LUMORA_SOURCE_FOLDER "/tools/lumora-config/completions $fpath)";
    for (const auto& prepare :
         {std::string("compinit -u -D; source <(lumora-config completion zsh)"), installed + "; compinit -u -D"}) {
        // The program finds the key only if the tab has completed it.
        const auto output =
            typeIntoZsh(zsh, profile, prepare, R"("lumora-config --prof"$'\t'"$1 ge"$'\t'"NOTIFICATIONsou"$'\t')");
        EXPECT_THAT(output, HasSubstr("otificationSounds")) << prepare; // the terminal keeps the N that was typed
        EXPECT_THAT(output, HasSubstr("\ntrue")) << prepare;
        const auto library = typeIntoZsh(zsh, profile, prepare,
                                         R"("lumora-config --plugin A=$1/resources/lumora-config-def"$'\t'"stores")");
        EXPECT_THAT(library, HasSubstr("/resources/lumora-config-defaults.xml")) << prepare;
    }
}

} // namespace program_test
