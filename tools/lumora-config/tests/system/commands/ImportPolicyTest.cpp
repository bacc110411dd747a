#include "Program.h"

#include <registry/RegistryFiles.h>
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

/// False if the system has a registry of its own: then the program refuses to import.
const bool importsFiles = !zel::registry::getAdministratorRegistryFolder().empty();

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

    EXPECT_THAT(originOf(profile, "Theme"), testing::StartsWith("gr\xC3\xBCn  (RegistryConfigStore, "));
    EXPECT_THAT(originOf(profile, "Port"), testing::StartsWith("8080  (RegistryConfigStore, "));
    EXPECT_THAT(originOf(profile, "Hosts"), testing::StartsWith("one  (RegistryConfigStore, "));
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
                                 ":8: refused: a key of another root\n" + file +
                                 ":9: refused: a value below a refused key\n" + "lumora-config: " + file +
                                 ": 4 of its lines are refused; the others apply from the next start or refresh on\n");
    EXPECT_THAT(originOf(profile, "Theme"), testing::StartsWith("corporate  (RegistryConfigStore, "));
    EXPECT_THAT(originOf(profile, "Other"), testing::StartsWith("1  (RegistryConfigStore, "));
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
    EXPECT_THAT(originOf(profile, "Theme"), testing::StartsWith("last  (RegistryConfigStore, "));
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
    EXPECT_EQ(outcome.error, file + ":3: refused: a key of another root\n" + file +
                                 ":4: refused: a value below a refused key\nlumora-config: " + file +
                                 ": contains nothing for the current user; nothing is changed\n");
    EXPECT_THAT(originOf(profile, "Theme"), testing::StartsWith("old  (RegistryConfigStore, "));
}

TEST(ImportPolicy, AFileOfTheSameNameReplacesTheEarlierOne) {
    const Profile profile;
    ASSERT_EQ(
        profile.run({"import-policy", profile.write("p.reg", version + header() + "\"A\"=\"1\"\r\n\"B\"=\"1\"\r\n")})
            .exitCode,
        0);
    ASSERT_EQ(profile.run({"import-policy", profile.write("p.reg", version + header() + "\"A\"=\"2\"\r\n")}).exitCode,
              0);
    EXPECT_THAT(originOf(profile, "A"), testing::StartsWith("2  (RegistryConfigStore, "));
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

TEST(ImportPolicy, PrintsOneObjectInJson) {
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
                                             {"dryRun", false},
                                             {"taken", json::array({set, gone})},
                                             {"values", json::array()},
                                             {"remarks", json::array()},
                                             {"refused", json::array({refused})}}));
}

TEST(ImportPolicy, ADryRunPrintsEachValueAndChangesNothing) {
    const Profile profile;
    const auto file = profile.write("p.reg", version + header() + "\"TelemetryEnabled\"=\"false\"\r\n\"Gone\"=-\r\n" +
                                                 "\"connectionpassword\"=\"planted-secret\"\r\n" +
                                                 "\"MyConnectionPassword\"=\"planted-secret\"\r\n");
    const auto outcome = profile.run({"import-policy", "--dry-run", file});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_EQ(outcome.out, file + ":3: " + policyKey + ": 3 set, 1 deleted\n" + file +
                               ":4: TelemetryEnabled = \"false\"\n" + file + ":5: Gone: deleted\n" + file +
                               ":6: connectionpassword = \"VALUE_HIDDEN\"\n" + file +
                               ":7: MyConnectionPassword = \"VALUE_HIDDEN\"\n");
    EXPECT_EQ(outcome.error, file +
                                 ":7: the key 'MyConnectionPassword' is unknown; did you mean 'connectionpassword'?\n" +
                                 file + " is valid; nothing is changed\n");
    EXPECT_FALSE(std::filesystem::exists(installed(profile, "p.reg")));
    EXPECT_THAT(profile.run({"--show-secrets", "import-policy", "--dry-run", file}).out, HasSubstr("planted-secret"));
}

TEST(ImportPolicy, ADryRunReportsTheReasonsOfTheImport) {
    const Profile profile;
    const auto file = profile.write("p.reg", version + header() + "\"TelemetryEnabeld\"=\"false\"\r\nrubbish\r\n" +
                                                 "\"AllowUrlProvisioning\"=\"0\"\r\n[broken\r\n\"Theme\"=\"1\"\r\n");
    const auto messages = file + ":4: the key 'TelemetryEnabeld' is unknown; did you mean 'TelemetryEnabled'?\n" +
                          file + ":5: refused: neither a key nor a value nor a comment\n" + file +
                          ":6: the value of the key 'AllowUrlProvisioning' must be \"true\" or \"false\"\n" + file +
                          ":7: refused: the key has no closing bracket\n" + file +
                          ":8: refused: a value below a refused key\n";
    const auto dryRun = profile.run({"import-policy", "--dry-run", file});
    EXPECT_EQ(dryRun.exitCode, 1);
    EXPECT_EQ(dryRun.error, messages + "lumora-config: " + file +
                                ": 3 of its lines are refused, 1 need attention; nothing is changed\n");
    const auto imported = profile.run({"import-policy", file});
    if (importsFiles) {
        EXPECT_EQ(imported.exitCode, 1);
        EXPECT_THAT(imported.error, StartsWith(messages));
    }
}

TEST(ImportPolicy, AKeyThatResemblesThePolicyKeyExitsWith1) {
    const Profile profile;
    const auto file =
        profile.write("p.reg", version + "[HKEY_CURRENT_USER\\Software\\Policies\\Ventrix Systems Inc.\\Unified "
                                         "Communications\\VentrixUC]\r\n\"TelemetryEnabled\"=\"false\"\r\n");
    for (const auto& arguments : {Arguments{"import-policy", "--dry-run", file}, Arguments{"import-policy", file}}) {
        const auto outcome = profile.run(arguments);
        if (arguments.size() == 2 && !importsFiles) {
            break;
        }
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_THAT(outcome.error, HasSubstr(file +
                                             ":3: not the client's policy key, so its values are never in force; "
                                             "did you mean '" +
                                             policyKey + "'?\n"));
    }
}

TEST(ImportPolicy, UnknownKeysAreShownByADryRunOnly) {
    const Profile profile;
    const auto file = profile.write("p.reg", version + header() + "\"SomethingOfAnotherService\"=\"1\"\r\n");
    EXPECT_THAT(profile.run({"import-policy", "--dry-run", file}).error,
                StartsWith(file + ":4: the key 'SomethingOfAnotherService' is unknown\n"));
    const auto imported = profile.run({"import-policy", file});
    if (importsFiles) {
        EXPECT_EQ(imported.exitCode, 0);
        EXPECT_EQ(imported.error, file + " applies from the next start or refresh on\n");
    }
}

TEST(ImportPolicy, AFileInTheFolderFollowsTheSameRules) {
    const Profile profile;
    const auto text = version + header() +
                      "\"Theme\"=\"policy\"\r\nrubbish\r\n\"Other\"=\"1\"\r\n[broken\r\n\"Lost\"=\"1\"\r\n" + header() +
                      "\"Last\"=\"1\"\r\n";
    std::filesystem::create_directories(profile.root() / "data/registry");
    const auto file = profile.write("data/registry/p.reg", text);
    EXPECT_THAT(originOf(profile, "Theme"), StartsWith("policy  (RegistryConfigStore, " + file + ":4)"));
    EXPECT_THAT(originOf(profile, "Other"), StartsWith("1  (RegistryConfigStore, " + file + ":6)"));
    EXPECT_THAT(originOf(profile, "Last"), StartsWith("1  (RegistryConfigStore, " + file + ":10)"));
    EXPECT_EQ(profile.run({"get", "Lost"}).exitCode, 1);
    const auto log = profile.run({"-v", "get", "Theme"}).error;
    for (const auto* message :
         {":5: refused: neither a key nor a value nor a comment", ":7: refused: the key has no closing bracket",
          ":8: refused: a value below a refused key"}) {
        EXPECT_THAT(log, HasSubstr(file + message));
        EXPECT_THAT(profile.run({"import-policy", "--dry-run", file}).error, HasSubstr(file + message));
    }
}

TEST(ImportPolicy, ADryRunInJsonHasValuesAndRemarks) {
    const Profile profile;
    const auto file = profile.write("p.reg", version + header() + "\"AllowUrlProvisioning\"=\"0\"\r\n\"B\"=-\r\n");
    const auto object = profile.run({"--json", "import-policy", "--dry-run", file}).lines().at(0);
    EXPECT_EQ(object.at("dryRun"), true);
    EXPECT_EQ(object.at("values"),
              (json::array({{{"line", 4}, {"key", "AllowUrlProvisioning"}, {"deleted", false}, {"value", "0"}},
                            {{"line", 5}, {"key", "B"}, {"deleted", true}, {"value", ""}}})));
    EXPECT_EQ(object.at("remarks"),
              (json::array({{{"line", 4},
                             {"message", "the value of the key 'AllowUrlProvisioning' must be \"true\" or \"false\""},
                             {"ineffective", true}}})));
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
    EXPECT_THAT(originOf(profile, "Key99999"), testing::StartsWith("99999  (RegistryConfigStore, "));
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
