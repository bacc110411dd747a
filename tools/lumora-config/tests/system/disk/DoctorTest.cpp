#include "Program.h"

#include <PrivateFiles.h>
#include <TemporaryProfile.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <algorithm>

namespace program_test {

using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

const std::string mainFile = "lumoraLocalConfig.dat";
const std::string backupFile = "lumoraLocalConfig_backup.dat";

std::size_t countLines(const std::string& text, const std::string& part) {
    std::size_t count = 0;
    for (std::size_t begin = 0; begin < text.size();) {
        const auto end = std::min(text.find('\n', begin), text.size());
        count += text.substr(begin, end - begin).find(part) == std::string::npos ? 0 : 1;
        begin = end + 1;
    }
    return count;
}

} // namespace

/// A profile with a value set by the user and a cached copy of another store.
class HealthOfAProfile : public testing::Test {
protected:
    HealthOfAProfile() {
        const auto file = profile.writeDocument("a.xml", "<FromServer>x</FromServer>");
        const auto outcome = profile.run({"--store", file + ":Foreign:40:cache", "set", "Theme", "dark"});
        EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    }

    std::filesystem::path config() const { return profile.root() / "config"; }
    void damage(const std::string& name) const { profile.write("config/" + name, "damaged"); }
    /// Removes the keys, so the program creates new ones.
    void replaceKeys() const { std::filesystem::remove_all(profile.root() / "data/keys"); }

    Outcome doctor() const { return profile.run({"--json", "doctor"}); }
    /// Returns the item of doctor's answer whose path ends with `ending`.
    static json item(const Outcome& outcome, const std::string& ending) {
        const auto lines = outcome.lines();
        for (const auto& entry : lines.at(0).at("items")) {
            if (entry.at("path").get<std::string>().ends_with(ending)) {
                return entry;
            }
        }
        return {{"state", "not examined"}, {"attention", false}, {"area", ""}};
    }
    void expectAttention(const std::string& ending, const std::string& state) const {
        const auto outcome = doctor();
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_THAT(std::string(item(outcome, ending).at("state")), HasSubstr(state));
        EXPECT_EQ(item(outcome, ending).at("attention"), true) << outcome.out;
    }

    const Profile profile;
};

class Doctor : public HealthOfAProfile {};

TEST_F(Doctor, ShowsEveryFileOfAGoodProfileAndExitsWith0) {
    const auto outcome = doctor();
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out;
    EXPECT_EQ(outcome.lines().at(0).at("attention"), false);
    for (const auto& name : {mainFile, backupFile, std::string("cachedForeign.dat")}) {
        EXPECT_EQ(item(outcome, name).at("area"), "file") << name;
        EXPECT_THAT(std::string(item(outcome, name).at("state")), HasSubstr("good"));
    }
    for (const auto* folder : {"config", "data", "state", "resources"}) {
        EXPECT_EQ(item(outcome, folder).at("area"), "directory") << folder;
        EXPECT_THAT(std::string(item(outcome, folder).at("state")), HasSubstr("owner"));
    }
    EXPECT_EQ(item(outcome, "cat2.key").at("area"), "key");
    EXPECT_EQ(item(outcome, "lumora-config-defaults.xml").at("area"), "defaults");
    EXPECT_THAT(outcome.out, HasSubstr("\"free\""));
}

TEST_F(Doctor, ShowsTheNumberOfKeysInAPolicyFile) {
    profile.writePolicy("Theme", "corporate");
    const auto outcome = doctor();
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out;
    EXPECT_THAT(std::string(item(outcome, "policy.reg").at("state")), HasSubstr("1 keys"));
}

TEST_F(Doctor, ShowsTheModeOfEachFile) {
    const auto outcome = doctor();
    EXPECT_THAT(std::string(item(outcome, mainFile).at("state")), HasSubstr("mode 0600"));
    EXPECT_THAT(std::string(item(outcome, "/config").at("state")), HasSubstr("mode 0700"));
    std::filesystem::permissions(config(), std::filesystem::perms(0777));
    expectAttention("/config", "mode 0777, too open");
    const auto key = profile.root() / "data/keys/cat2.key";
    std::filesystem::permissions(key, std::filesystem::perms(0644));
    expectAttention("cat2.key", "mode 0644, too open");
}

TEST_F(Doctor, ChangesNothing) {
    damage(backupFile);
    EXPECT_EQ(profile.run({"doctor"}).exitCode, 1);
    EXPECT_EQ(testing_host::readFile(config() / backupFile), "damaged");
    EXPECT_FALSE(std::filesystem::exists(config() / (backupFile + ".unreadable")));
}

TEST_F(Doctor, MarksAndCountsWhatNeedsAttentionInItsText) {
    damage(backupFile);
    const auto outcome = profile.run({"doctor"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.error, "lumora-config: 1 item needs attention\n");
    EXPECT_EQ(countLines(outcome.out, "damaged"), 1U);
    EXPECT_THAT(outcome.out, HasSubstr("!"));
}

TEST_F(Doctor, ShowsADamagedFile) {
    damage(mainFile);
    expectAttention(mainFile, "damaged");
}

TEST_F(Doctor, ShowsAFileThatIsEncryptedWithAnotherKey) {
    replaceKeys();
    expectAttention("cachedForeign.dat", "another key");
}

TEST_F(Doctor, ShowsAFileThatCannotBeRead) {
    std::filesystem::remove(config() / mainFile);
    std::filesystem::create_directory(config() / mainFile);
    expectAttention(mainFile, "unreadable");
}

TEST_F(Doctor, ShowsThatTheBackupIsRead) {
    std::filesystem::remove(config() / mainFile);
    expectAttention(mainFile, "its backup is read instead");
}

TEST_F(Doctor, ShowsAFileThatWasMovedAside) {
    damage(mainFile);
    profile.run({"set", "Theme", "light"});
    expectAttention(mainFile + ".unreadable", "damaged");
}

TEST_F(Doctor, ShowsADirectoryThatOthersCanWrite) {
    testing_host::letEverybodyWrite(config());
    expectAttention("config", "too open");
}

TEST_F(Doctor, ShowsAKeyThatOthersCanRead) {
    testing_host::letEverybodyRead(profile.root() / "data/keys/cat2.key");
    expectAttention("cat2.key", "too open");
}

TEST_F(Doctor, ShowsADirectoryOfAnotherUser) {
    if (::chown(profile.root().append("state").c_str(), 12345, 12345) != 0) {
        GTEST_SKIP() << "only root can change the owner of a directory";
    }
    expectAttention("/state", "owned by another user");
}

TEST_F(Doctor, ShowsTheRejectedLinesOfAPolicyFile) {
    profile.write("data/registry/mixed.reg",
                  "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\K]\r\nrubbish\r\n");
    expectAttention("mixed.reg", "line 4: refused: neither a key nor a value nor a comment");
    profile.write("data/registry/mixed.reg",
                  "REGEDIT4\r\n[HKEY_CURRENT_USER\\Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications\\"
                  "VentrixUC]\r\n\"AllowUrlProvisioning\"=\"0\"\r\n");
    expectAttention("mixed.reg", "line 3: the value of the key 'AllowUrlProvisioning' must be \"true\" or \"false\"");
    profile.write("data/registry/mixed.reg", "<xml/>");
    expectAttention("mixed.reg", "no exported registry file");
}

TEST_F(Doctor, ShowsThatTheDefaultsAreMissing) {
    std::filesystem::remove(profile.defaultsFile());
    expectAttention("lumora-config-defaults.xml", "no defaults file");
}

TEST_F(Doctor, NamesTheProcessThatHoldsTheLock) {
    const RunningShell shell(profile);
    const auto outcome = doctor();
    EXPECT_EQ(outcome.exitCode, 0) << outcome.out;
    EXPECT_THAT(outcome.out, HasSubstr("in use by process " + std::to_string(shell.getProcess())));
}

TEST_F(Doctor, SeesItsOwnLockInTheShell) {
    const auto outcome = profile.shell({"doctor"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_THAT(outcome.out, HasSubstr("held by this process"));
}

class HealthLine : public HealthOfAProfile {
protected:
    /// Expects that any command names the file in one line.
    void expectLine(const std::string& name, const std::string& text) const {
        const auto outcome = profile.run({"get", "IP_MODE"});
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_EQ(countLines(outcome.error, name), 1U) << outcome.error;
        EXPECT_THAT(outcome.error, HasSubstr(text));
        EXPECT_EQ(countLines(outcome.error, ""), 1U) << outcome.error;
    }
};

TEST_F(HealthLine, IsNotPrintedWhileAllFilesAreGood) {
    EXPECT_THAT(profile.run({"get", "Theme"}).error, IsEmpty());
}

TEST_F(HealthLine, NamesADamagedFileAndItsNewPathAfterAChange) {
    damage(mainFile);
    expectLine(mainFile, mainFile + " is damaged");
    const auto movedAside = mainFile + " was moved aside as " + mainFile + ".unreadable (damaged)";
    EXPECT_THAT(profile.run({"set", "Theme", "light"}).error, HasSubstr(movedAside));
    expectLine(mainFile, movedAside);
}

TEST_F(HealthLine, IsPrintedInEveryRunUntilTheFileIsDeleted) {
    damage(mainFile);
    profile.run({"set", "Theme", "light"});
    expectLine(mainFile, "was moved aside");
    expectLine(mainFile, "was moved aside");
    std::filesystem::remove(config() / (mainFile + ".unreadable"));
    EXPECT_THAT(profile.run({"get", "IP_MODE"}).error, IsEmpty());
}

TEST_F(HealthLine, NamesAFileThatIsEncryptedWithAnotherKey) {
    replaceKeys();
    expectLine("cachedForeign.dat", "another key");
}

TEST_F(HealthLine, NamesAFileThatCannotBeRead) {
    std::filesystem::remove(config() / mainFile);
    std::filesystem::create_directory(config() / mainFile);
    expectLine(mainFile, mainFile + " is unreadable");
}

class Restore : public HealthOfAProfile {
protected:
    const std::string kept = mainFile + ".unreadable";
};

TEST_F(Restore, RestoresAFileAndMovesThePresentOneAside) {
    std::filesystem::rename(config() / mainFile, config() / kept);
    std::filesystem::remove(config() / backupFile);
    ASSERT_EQ(profile.run({"set", "Theme", "light"}).exitCode, 0);
    const auto outcome = profile.run({"restore", kept});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "dark\n");
    // The opposite case.
    const auto aside = kept + ".2";
    EXPECT_EQ(item(doctor(), aside).at("area"), "moved aside");
    EXPECT_EQ(profile.run({"restore", aside}).exitCode, 0);
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "light\n");
}

TEST_F(Restore, RefusesAFileThatCannotBeRead) {
    damage(mainFile);
    ASSERT_EQ(profile.run({"set", "Theme", "light"}).exitCode, 0);
    const auto outcome = profile.run({"restore", kept});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.error, HasSubstr("is damaged; nothing is changed"));
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "light\n");
    EXPECT_EQ(testing_host::readFile(config() / kept), "damaged");
}

TEST_F(Restore, RefusesAFileThatWasNotMovedAside) {
    for (const auto* name : {"lumoraLocalConfig.dat", "nothing", "../a.xml"}) {
        const auto outcome = profile.run({"restore", name});
        EXPECT_EQ(outcome.exitCode, 1) << name;
        EXPECT_THAT(outcome.error, HasSubstr("no file was moved aside as"));
    }
}

TEST_F(Restore, IsNotOverwrittenByTheNextSetOfTheShell) {
    std::filesystem::rename(config() / mainFile, config() / kept);
    std::filesystem::remove(config() / backupFile);
    const auto outcome = profile.shell({"set Other x", "restore " + kept, "get Theme", "set Fresh y"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_EQ(outcome.out, "dark\n");
    EXPECT_EQ(profile.run({"get", "Theme"}).out, "dark\n");
    EXPECT_EQ(profile.run({"get", "Fresh"}).out, "y\n");
}

} // namespace program_test
