#include "Program.h"

#include <registry/RegistryValue.h>

#include <TemporaryProfile.h>
#include <gmock/gmock.h>

namespace program_test {

using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

const std::string version = "Windows Registry Editor Version 5.00\r\n\r\n";
const std::string policyKey = "HKEY_CURRENT_USER\\Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications"
                              "\\VentrixUC";

std::string header(const std::string& below = "") {
    return "[" + policyKey + below + "]\r\n";
}

/// Returns the text in the encoding of a registry editor's export.
std::string asExported(const std::wstring& text) {
    const auto bytes = zel::registry::encodeRegistryText(text);
    return "\xFF\xFE" + std::string(bytes.begin(), bytes.end() - 2);
}

std::filesystem::path installed(const Profile& profile, const std::string& name) {
    return profile.root() / "data" / "registry" / name;
}

std::string originOf(const Profile& profile, const std::string& key) {
    return profile.run({"get", key, "--origin"}).out;
}

} // namespace

TEST(ImportPolicy, ImportsAnExportAndListsItsKeys) {
    const Profile profile;
    const auto file =
        profile.write("branch.reg", asExported(L"Windows Registry Editor Version 5.00\r\n\r\n"
                                               L"; for all branches\r\n"
                                               L"[HKEY_CURRENT_USER\\Software\\Policies\\Ventrix Systems, Inc."
                                               L"\\Unified Communications\\VentrixUC]\r\n"
                                               L"\"Theme\"=\"gr\u00fcn\" ; a comment\r\n"
                                               L"\"Port\"=dword:00001f90\r\n"
                                               L"\"Hosts\"=hex(7):6f,00,6e,00,65,00,00,00,74,00,77,00,\\\r\n"
                                               L"  6f,00,00,00,00,00\r\n"
                                               L"\"Long\"=\"" +
                                               std::wstring(2000, L'x') +
                                               L"\"\r\n"
                                               L"\"Gone\"=-\r\n\r\n"
                                               L"[-HKEY_CURRENT_USER\\Software\\Policies\\Ventrix Systems, Inc."
                                               L"\\Unified Communications\\VentrixUC\\Old]\r\n"));
    const auto outcome = profile.run({"import-policy", file});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out, file + ":4: " + policyKey + ": 4 set, 1 deleted\n" + file + ":12: " + policyKey +
                               "\\Old: deleted with all below it\n");
    EXPECT_EQ(outcome.error, file + " applies from the next start or refresh on\n");

    EXPECT_EQ(originOf(profile, "Theme"), "gr\xC3\xBCn  (RegistryConfigStore)\n");
    EXPECT_EQ(originOf(profile, "Port"), "8080  (RegistryConfigStore)\n");
    EXPECT_EQ(originOf(profile, "Hosts"), "one  (RegistryConfigStore)\n");
    EXPECT_EQ(profile.run({"get", "Long"}).out, std::string(2000, 'x') + "\n");
    EXPECT_EQ(profile.run({"get", "Gone"}).exitCode, 1);
}

TEST(ImportPolicy, ListsEachRefusedLineAndImportsTheOthers) {
    const Profile profile;
    const auto file =
        profile.write("mixed.reg", version + header() + "\"Theme\"=\"corporate\"\r\n" +
                                       "\"Broken\"=planted-secret\r\n" + "rubbish\r\n" + "\"Other\"=\"1\"\r\n" +
                                       "[HKEY_LOCAL_MACHINE\\Software\\K]\r\n" + "\"Machine\"=\"1\"\r\n");
    const auto outcome = profile.run({"import-policy", file});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.out, file + ":3: " + policyKey + ": 2 set\n");
    EXPECT_EQ(outcome.error, file + ":5: refused: a kind of value that is not known\n" + file +
                                 ":6: refused: neither a key nor a value nor a comment\n" + file +
                                 ":8: refused: a key of another root\n" + "lumora-config: " + file +
                                 ": 3 of its lines are refused; the others apply from the next start or refresh on\n");
    EXPECT_EQ(originOf(profile, "Theme"), "corporate  (RegistryConfigStore)\n");
    EXPECT_EQ(originOf(profile, "Other"), "1  (RegistryConfigStore)\n");
}

TEST(ImportPolicy, RefusesAValueThatWouldHideTheFollowingOnes) {
    const Profile profile;
    const auto fits = std::string(2047, 'x');
    const auto file = profile.write("long.reg", version + header() + "\"Fits\"=\"" + fits + "\"\r\n" +
                                                    "\"TooLong\"=\"" + fits + "x\"\r\n" + "\"" + std::string(260, 'n') +
                                                    "\"=\"1\"\r\n" + "\"Theme\"=\"last\"\r\n");
    const auto outcome = profile.run({"import-policy", file});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.error,
                StartsWith(file + ":5: refused: the name or the value is longer than the client can read\n" + file +
                           ":6: refused: the name or the value is longer than the client can read\n"));
    EXPECT_EQ(profile.run({"get", "Fits"}).out, fits + "\n");
    EXPECT_EQ(originOf(profile, "Theme"), "last  (RegistryConfigStore)\n");
}

TEST(ImportPolicy, AFileWithNothingForTheUserChangesNothing) {
    const Profile profile;
    const auto machine = version + "[HKEY_LOCAL_MACHINE\\Software\\K]\r\n\"a\"=\"1\"\r\n";
    ASSERT_EQ(
        profile.run({"import-policy", profile.write("p.reg", version + header() + "\"Theme\"=\"old\"\r\n")}).exitCode,
        0);
    const auto file = profile.write("p.reg", machine);
    const auto outcome = profile.run({"import-policy", file});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.error, file + ":3: refused: a key of another root\nlumora-config: " + file +
                                 ": contains nothing for the current user; nothing is changed\n");
    EXPECT_EQ(originOf(profile, "Theme"), "old  (RegistryConfigStore)\n");
}

TEST(ImportPolicy, AFileOfTheSameNameReplacesTheEarlierOne) {
    const Profile profile;
    ASSERT_EQ(
        profile.run({"import-policy", profile.write("p.reg", version + header() + "\"A\"=\"1\"\r\n\"B\"=\"1\"\r\n")})
            .exitCode,
        0);
    ASSERT_EQ(profile.run({"import-policy", profile.write("p.reg", version + header() + "\"A\"=\"2\"\r\n")}).exitCode,
              0);
    EXPECT_EQ(originOf(profile, "A"), "2  (RegistryConfigStore)\n");
    EXPECT_EQ(profile.run({"get", "B"}).exitCode, 1);
}

TEST(ImportPolicy, ALaterFileDeletesValuesOfAnEarlierOne) {
    const Profile profile;
    const auto first = profile.write("10-first.reg", version + header() + "\"A\"=\"1\"\r\n\"B\"=\"1\"\r\n" +
                                                         header("\\Sub") + "\"C\"=\"1\"\r\n");
    const auto second = profile.write("20-second.reg", version + header() + "\"A\"=-\r\n[-" + policyKey + "\\Sub]\r\n");
    ASSERT_EQ(profile.run({"import-policy", first}).exitCode, 0);
    ASSERT_EQ(profile.run({"get", "C"}).exitCode, 0);
    ASSERT_EQ(profile.run({"import-policy", second}).exitCode, 0);
    EXPECT_EQ(profile.run({"get", "A"}).exitCode, 1);
    EXPECT_EQ(profile.run({"get", "C"}).exitCode, 1);
    EXPECT_EQ(profile.run({"get", "B"}).out, "1\n");
}

TEST(ImportPolicy, AFileThatIsNotAnExportIsRefusedAsAWhole) {
    const Profile profile;
    const auto file = profile.write("p.reg", "<xml/>");
    const auto outcome = profile.run({"import-policy", file});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.error, "lumora-config: " + file + ":1: no exported registry file\n");
    EXPECT_FALSE(std::filesystem::exists(installed(profile, "p.reg")));

    const auto missing = profile.run({"import-policy", file + ".missing"});
    EXPECT_EQ(missing.exitCode, 3);
    EXPECT_THAT(missing.error, HasSubstr("no such file"));
    EXPECT_EQ(profile.run({"import-policy"}).exitCode, 2);
}

TEST(ImportPolicy, AHiddenFileIsRefusedBecauseItWouldNotBeRead) {
    const Profile profile;
    const auto file = profile.write(".p.reg", version + header() + "\"Theme\"=\"corporate\"\r\n");
    const auto outcome = profile.run({"import-policy", file});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_EQ(outcome.out, "");
    EXPECT_THAT(outcome.error, HasSubstr("cannot be written to the user's registry files"));
}

TEST(ImportPolicy, ShowsNoValue) {
    const Profile profile;
    const auto file = profile.write("p.reg", version + header() + "\"connectionpassword\"=\"planted-secret\"\r\n" +
                                                 "\"planted-secret\r\n" + "\"a\"=planted-secret\r\n");
    for (const auto& options : {Arguments{"import-policy", file}, Arguments{"--json", "import-policy", file}}) {
        const auto outcome = profile.run(options);
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_THAT(outcome.out + outcome.error, Not(HasSubstr("planted-secret")));
    }
    EXPECT_THAT(testing_host::readFile(installed(profile, "p.reg")), HasSubstr("planted-secret"));
}

TEST(ImportPolicy, InJsonIsOneObject) {
    const Profile profile;
    const auto file = profile.write("p.reg", version + header() + "\"A\"=\"1\"\r\n\"B\"=-\r\nrubbish\r\n[-" +
                                                 policyKey + "\\Old]\r\n");
    const auto outcome = profile.run({"--json", "import-policy", file});
    EXPECT_EQ(outcome.exitCode, 1);
    ASSERT_EQ(outcome.lines().size(), 1U) << outcome.out;
    const json set{{"line", 3}, {"key", policyKey}, {"deleted", false}, {"valuesSet", 1}, {"valuesDeleted", 1}};
    const json gone{
        {"line", 7}, {"key", policyKey + "\\Old"}, {"deleted", true}, {"valuesSet", 0}, {"valuesDeleted", 0}};
    const json refused{{"line", 6}, {"reason", "neither a key nor a value nor a comment"}};
    EXPECT_EQ(outcome.lines().front(), (json{{"type", "import"},
                                             {"file", file},
                                             {"taken", json::array({set, gone})},
                                             {"refused", json::array({refused})}}));
}

TEST(ImportPolicy, AppliesInTheShellFromTheNextRefresh) {
    const Profile profile;
    const auto file = profile.write("p.reg", version + header() + "\"Theme\"=\"corporate\"\r\n");
    const auto outcome = profile.shell({"import-policy " + file, "get Theme", "refresh", "get Theme"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_THAT(outcome.out, EndsWith("\nsystem\ncorporate\n"));
}

TEST(ImportPolicy, AHundredThousandValuesAreImported) {
    const Profile profile;
    std::string text = version + header();
    for (int i = 0; i < 100000; ++i) {
        text += "\"Key" + std::to_string(i) + "\"=\"" + std::to_string(i) + "\"\r\n";
    }
    const auto outcome = profile.run({"import-policy", profile.write("big.reg", text)});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.out, EndsWith(": 100000 set\n"));
    EXPECT_EQ(originOf(profile, "Key99999"), "99999  (RegistryConfigStore)\n");
}

TEST(ImportPolicy, APathThatIsNotARegularFileIsNotReplaced) {
    const Profile profile;
    const auto file = profile.write("mine.reg", "REGEDIT4\r\n[HKEY_CURRENT_USER\\K]\r\n\"a\"=\"1\"\r\n");
    const auto taken = profile.root() / "data" / "registry" / "mine.reg";
    std::filesystem::create_directories(taken);
    const auto outcome = profile.run({"import-policy", file});
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.error, HasSubstr("something there has its name and is not a regular file"));
    EXPECT_TRUE(std::filesystem::is_directory(taken));
}

} // namespace program_test
