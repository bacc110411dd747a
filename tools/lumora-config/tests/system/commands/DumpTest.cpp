#include "Program.h"

#include <PrivateFiles.h>
#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <random>

namespace program_test {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

namespace fs = std::filesystem;

std::string readFile(const fs::path& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

constexpr auto ownersOnly = fs::perms::owner_read | fs::perms::owner_write;

std::string runInShell(const Profile& profile, const std::string& arguments, const std::string& redirection) {
    const auto command = std::string(LUMORA_CONFIG_PROGRAM) + " --profile " + profile.root().string() + ' ' +
                         arguments + ' ' + redirection;
    return runProcess("/bin/sh", {"-c", command}).error;
}

void appendUtf8(std::string& text, char32_t c) {
    const auto append = [&](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (c < 0x80) {
        append(c);
    } else if (c < 0x800) {
        append(0xc0 | c >> 6);
        append(0x80 | (c & 0x3f));
    } else if (c < 0x10000) {
        append(0xe0 | c >> 12);
        append(0x80 | (c >> 6 & 0x3f));
        append(0x80 | (c & 0x3f));
    } else {
        append(0xf0 | c >> 18);
        append(0x80 | (c >> 12 & 0x3f));
        append(0x80 | (c >> 6 & 0x3f));
        append(0x80 | (c & 0x3f));
    }
}

bool isInXml(char32_t c) {
    return c == 9 || c == 10 || c == 13 || (c >= 0x20 && c < 0xd800) || (c >= 0xe000 && c < 0xfffe) || c >= 0x10000;
}

/// Returns a value of characters that a file can store, with many of those that formats treat specially.
std::string makeValue(std::mt19937& random) {
    static const std::u32string special =
        U"\t\n\r \"\\#='<>&;{}[],u\x7f\x85\xa0\x2028\x202e\xfeff\xfffd\U0001F600\U0010FFFF";
    std::string value;
    for (auto length = random() % 40; length > 0; --length) {
        const auto any = static_cast<char32_t>(random() % (random() % 2 == 0 ? 0x250U : 0x110000U));
        const bool isSpecial = random() % 2 == 0 || !isInXml(any);
        appendUtf8(value, isSpecial ? special[random() % special.size()] : any);
    }
    return value;
}

std::size_t countText(const std::string& content, std::string_view text) {
    std::size_t count = 0;
    for (auto found = content.find(text); found != std::string::npos; found = content.find(text, found + 1)) {
        ++count;
    }
    return count;
}

/// Returns the library that logs the operations on the disk, behind the sanitizer's, which must be the first of a
/// process.
std::string preloadedLibraries() {
    const auto sanitizers = runProcess(
        "/bin/sh", {"-c", "ldd " LUMORA_CONFIG_PROGRAM " | sed -n 's/.*lib[at]san.* => \\([^ ]*\\) .*/\\1/p'"});
    auto libraries = sanitizers.out + LUMORA_FAULTY_DISK;
    std::ranges::replace(libraries, '\n', ':');
    return libraries;
}

} // namespace

TEST(Dump, FiveThousandRandomValuesAreLoadedUnchanged) {
    const auto seed = std::random_device()();
    std::cout << "seed: " << seed << '\n';
    std::mt19937 random(seed);
    nlohmann::json expected;
    nlohmann::json dump{{"type", "dump"}, {"values", nlohmann::json::array()}};
    for (int i = 0; i < 5000; ++i) {
        const auto key = "key" + std::to_string(i);
        expected[key] = makeValue(random);
        dump["values"].push_back({{"key", key}, {"value", expected[key]}});
    }
    const Profile first;
    const Profile second;
    const auto loaded = first.run({"--json", "load", first.write("values.json", dump.dump())});
    ASSERT_EQ(loaded.exitCode, 0) << loaded.error;
    EXPECT_EQ(loaded.lines().at(0).at("added"), 5000);
    const auto text = first.run({"dump"}).out;
    const auto loadedAgain = second.run({"load", "-"}, text);
    ASSERT_EQ(loadedAgain.exitCode, 0) << loadedAgain.error;
    EXPECT_EQ(loadedAgain.error, "5000 values set: 5000 added, 0 changed, 0 unchanged\n");
    std::size_t count = 0;
    const auto answers = second.run({"--json", "dump"}).lines();
    for (const auto& found : answers.at(0).at("values")) {
        ++count;
        ASSERT_EQ(found.at("value"), expected.at(found.at("key").get<std::string>()))
            << found.at("key") << ", seed: " << seed;
    }
    EXPECT_EQ(count, 5000U);
    EXPECT_TRUE(second.run({"dump"}).out == text) << "seed: " << seed;
}

TEST(Dump, SelectsStoreEffectiveValuesAndKeys) {
    const Profile profile;
    profile.writePolicy("Theme", "corporate");
    ASSERT_EQ(profile.run({"set", "Note", "x"}).exitCode, 0);
    EXPECT_EQ(profile.run({"dump"}).out, "# lumora-config dump: user\nnote = \"x\"  # LocalFileConfigStore\n");
    EXPECT_EQ(profile.run({"dump", "--user", "th*"}).out, "# lumora-config dump: user\n");
    EXPECT_EQ(profile.run({"dump", "--store", "registryconfigstore"}).out,
              "# lumora-config dump: RegistryConfigStore\nTheme = \"corporate\"  # RegistryConfigStore\n");
    EXPECT_THAT(profile.run({"dump", "--effective", "the"}).out,
                HasSubstr("heme = \"corporate\"  # RegistryConfigStore\n"));
    EXPECT_EQ(profile.run({"dump", "--store", "Nope"}).exitCode, 1);
    EXPECT_EQ(profile.run({"dump", "--user", "--effective"}).exitCode, 2);
}

TEST(Dump, LeavesSecretsOut) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "connectionpassword", "-"}, "planted-secret\n").exitCode, 0);
    for (const auto& arguments : {Arguments{"dump"}, Arguments{"--json", "dump", "--effective"}}) {
        EXPECT_THAT(profile.run(arguments).out, AllOf(HasSubstr("hidden"), Not(HasSubstr("planted-secret"))));
    }
}

TEST(Dump, WritesNoSecretsToAPipe) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "connectionpassword", "planted-secret"}).exitCode, 0);
    const auto refused = profile.run({"--show-secrets", "dump"});
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_EQ(refused.out, "");
    EXPECT_THAT(refused.error, HasSubstr("standard output is not a file of mode 0600"));
}

TEST(Dump, WritesSecretsOnlyToFilesOfMode0600) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "connectionpassword", "planted-secret"}).exitCode, 0);
    const auto file = profile.write("a.dump", "old");
    fs::permissions(file, fs::perms::owner_all | fs::perms::others_read | fs::perms::group_read);
    EXPECT_THAT(runInShell(profile, "--show-secrets dump", ">" + file), HasSubstr("is not a file of mode 0600"));
    EXPECT_EQ(readFile(file), "");
    fs::permissions(file, ownersOnly);
    EXPECT_EQ(runInShell(profile, "--show-secrets dump", ">" + file), "");
    EXPECT_THAT(readFile(file), HasSubstr("connectionpassword = secret \"planted-secret\""));
}

TEST(Dump, AFileHasMode0600AndIsLoadedWithItsSecrets) {
    const Profile profile;
    const Profile other;
    const auto file = profile.write("a.dump", "old");
    testing_host::letEverybodyWrite(file);
    ASSERT_EQ(profile.run({"set", "connectionpassword", "planted-secret"}).exitCode, 0);
    EXPECT_EQ(profile.run({"--show-secrets", "dump", "-o", file}).error, "1 keys written to " + file + "\n");
    EXPECT_TRUE(testing_host::isPrivate(file));
    ASSERT_EQ(other.run({"load", file}).exitCode, 0);
    EXPECT_EQ(other.run({"--show-secrets", "get", "connectionpassword"}).out, "planted-secret\n");
}

TEST(Load, CountsAndReadsBackWhatItSet) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Same", "1"}).exitCode, 0);
    ASSERT_EQ(profile.run({"set", "Other", "1"}).exitCode, 0);
    const auto file = profile.write("a.dump", "Same = \"1\"\nOther = \"2\"\nNew = \"3\"\nPassword = hidden\n");
    const auto outcome = profile.run({"--json", "load", file});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out,
              "{\"type\":\"load\",\"file\":\"" + file +
                  "\",\"dryRun\":false,\"set\":3,\"added\":1,\"changed\":1,\"unchanged\":1,\"leftOut\":1}\n");
    EXPECT_EQ(profile.run({"get", "Other"}).out, "2\n");
    EXPECT_EQ(profile.run({"get", "New"}).out, "3\n");
}

TEST(Load, SetsNothingInADryRun) {
    const Profile profile;
    EXPECT_EQ(profile.run({"load", "--dry-run", "-"}, "Note = \"x\"\n").error,
              "1 values would be set: 1 added, 0 changed, 0 unchanged\n");
    EXPECT_EQ(profile.run({"get", "Note"}).exitCode, 1);
}

TEST(Load, SetsNothingIfOneValueIsRefused) {
    const Profile profile;
    for (const auto* bad :
         {"1key = \"x\"", "Note2 = \"\\u0001\"", "AllowUrlProvisioning = \"0\"", "note = \"y\"", "Note2 = unquoted"}) {
        const auto outcome = profile.run({"load", "-"}, std::string("Note = \"x\"\n") + bad + '\n');
        EXPECT_NE(outcome.exitCode, 0) << bad;
        EXPECT_EQ(profile.run({"get", "Note"}).exitCode, 1) << bad;
    }
    EXPECT_EQ(profile.run({"load", "--force", "-"}, "1key = \"x\"\nAllowUrlProvisioning = \"0\"\n").exitCode, 0);
    EXPECT_EQ(profile.run({"get", "1key"}).out, "x\n");
}

TEST(Load, KeepsTheRecordOfCachedCopies) {
    const Profile profile;
    const auto store = profile.writeDocument("a.xml", "<FromServer>x</FromServer>");
    ASSERT_EQ(profile.run({"--store", store + ":Server:40:cache", "stores"}).exitCode, 0);
    EXPECT_THAT(profile.run({"dump"}).out, Not(HasSubstr("rimary")));
    ASSERT_EQ(profile.run({"load", "-"}, "PrimaryConfigStores = \"Other:1\"\nNote = \"x\"\n").exitCode, 0);
    EXPECT_EQ(profile.run({"get", "FromServer"}).out, "x\n");
}

TEST(Load, FailsIfTheValuesAreNotOnTheDisk) {
    const Profile profile;
    profile.write("resources/lumora-config-defaults.xml",
                  "<Lumora><userConfig name=\"Lumora_SDK_Mode\" value=\"true\"/></Lumora>");
    const auto outcome = profile.run({"load", "-"}, "A = \"1\"\nB = \"2\"\n");
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.error, HasSubstr("2 of 2 values are set for this run only, because they are not on the disk"));
    EXPECT_THAT(outcome.error, Not(HasSubstr("values set")));
}

TEST(Load, WritesTheUsersFileOnce) {
    if (std::string_view(LUMORA_FAULTY_DISK).empty()) {
        GTEST_SKIP() << "no library that logs the operations on the disk";
    }
    const Profile profile;
    const auto log = profile.root() / "operations";
    std::string dump;
    for (int i = 0; i < 100; ++i) {
        dump += "Key" + std::to_string(i) + " = \"x\"\n";
    }
    const auto outcome = runProcess(
        "/usr/bin/env",
        {"LD_PRELOAD=" + preloadedLibraries(), "LUMORA_FAULT_FOLDER=" + (profile.root() / "config").string(),
         "LUMORA_FAULT_LOG=" + log.string(), LUMORA_CONFIG_PROGRAM, "--profile", profile.root().string(), "load", "-"},
        dump);
    ASSERT_EQ(outcome.error, "100 values set: 100 added, 0 changed, 0 unchanged\n");
    const auto operations = readFile(log);
    EXPECT_EQ(countText(operations, "/lumoraLocalConfig.dat proceeds"), 1U) << operations;
    EXPECT_EQ(countText(operations, "/lumoraLocalConfig_backup.dat proceeds"), 1U) << operations;
}

TEST(Load, WorksInTheShell) {
    const Profile profile;
    const auto file = profile.write("a.dump", "Note = \"x\"\n");
    const auto outcome = profile.shell({"load " + file, "get Note", "load -", "dump"});
    EXPECT_EQ(outcome.out, "x\n# lumora-config dump: user\nNote = \"x\"  # LocalFileConfigStore\n");
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(outcome.error, HasSubstr("the commands are on standard input"));
}

TEST(Set, ReadsAValueFromStandardInput) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Note", "-"}, "a\nb\r\n").exitCode, 0);
    EXPECT_EQ(profile.run({"get", "Note"}).out, "a\nb\n");
    ASSERT_EQ(profile.run({"set", "Note", "-"}, "").exitCode, 0);
    EXPECT_EQ(profile.run({"get", "Note"}).out, "\n");
    const auto outcome = profile.shell({"set Note -", "  \"quoted\" # ", "get Note", "set Note -"});
    EXPECT_EQ(outcome.out, "  \"quoted\" # \n");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.error, HasSubstr("standard input has no line with the value"));
}

} // namespace program_test
