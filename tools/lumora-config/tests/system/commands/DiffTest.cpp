#include "Program.h"

#include <gmock/gmock.h>

namespace program_test {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

TEST(Diff, ListsTheDifferentKeysOfTwoProfilesWithTheirStores) {
    const Profile left;
    const Profile right;
    const auto compare = [&] {
        return runProcess(LUMORA_CONFIG_PROGRAM, {"diff", left.root().string(), right.root().string()});
    };
    ASSERT_EQ(left.run({"set", "Theme", "dark"}).exitCode, 0);
    EXPECT_EQ(compare().out, "--- " + left.root().string() + "\n+++ " + right.root().string() +
                                 "\n-theme = \"dark\"  # LocalFileConfigStore\n"
                                 "+theme = \"system\"  # lumora-config-defaults.xml\n");
    EXPECT_EQ(compare().exitCode, 1);
    ASSERT_EQ(right.run({"set", "Theme", "dark"}).exitCode, 0);
    const auto equal = compare();
    EXPECT_EQ(equal.exitCode, 0);
    EXPECT_EQ(equal.out + equal.error, "");
}

TEST(Diff, ComparesTheAdministratorsValuesWithThoseInForceWithoutOperands) {
    const Profile profile;
    EXPECT_EQ(profile.run({"diff"}).exitCode, 0);
    profile.writePolicy("Note", "policy");
    ASSERT_EQ(profile.run({"set", "Note", "mine"}).exitCode, 0);
    for (const auto& outcome : {profile.run({"diff"}), profile.shell({"diff"})}) {
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_THAT(outcome.out, AllOf(HasSubstr("ote = \"policy\"  # RegistryConfigStore\n+"),
                                       HasSubstr("ote = \"mine\"  # LocalFileConfigStore\n")));
    }
}

TEST(Diff, ReadsOneOperandFromStandardInput) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Note", "x"}).exitCode, 0);
    const auto dump = profile.run({"dump"}).out;
    EXPECT_EQ(profile.run({"diff", "-"}, dump).exitCode, 0);
    const auto file = profile.write("a.dump", "Note = \"y\"\n");
    EXPECT_EQ(profile.run({"diff", file, "-"}, dump).out,
              "--- " + file + "\n+++ standard input\n-Note = \"y\"\n+note = \"x\"  # LocalFileConfigStore\n");
    EXPECT_EQ(profile.run({"diff", "-", profile.root().string()}, dump).exitCode, 0);
    const auto twice = profile.run({"diff", "-", "-"}, dump);
    EXPECT_EQ(twice.exitCode, 2);
    EXPECT_THAT(twice.error, HasSubstr("only one operand of 'diff' can be '-'"));
}

TEST(Diff, ComparesADumpWithTheSameValuesOfTheProfile) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "Note", "x"}).exitCode, 0);
    const auto file = profile.write("a.dump", profile.run({"dump"}).out);
    const auto effective = profile.write("b.json", profile.run({"--json", "dump", "--effective"}).out);
    EXPECT_EQ(profile.run({"diff", file}).exitCode, 0);
    EXPECT_EQ(profile.run({"diff", effective}).exitCode, 0);
    EXPECT_EQ(runProcess(LUMORA_CONFIG_PROGRAM, {"diff", file, profile.root().string()}).exitCode, 0);
    ASSERT_EQ(profile.run({"set", "Note", "y"}).exitCode, 0);
    const auto outcome = profile.run({"--json", "diff", file});
    EXPECT_EQ(outcome.exitCode, 1);
    const auto comparison = outcome.lines().at(0);
    EXPECT_EQ(comparison.at("type"), "comparison");
    EXPECT_EQ(comparison.at("left"), file);
    EXPECT_EQ(comparison.at("right"), "user");
    ASSERT_EQ(comparison.at("differences").size(), 1U);
    EXPECT_EQ(comparison.at("differences")[0].at("left").at("value"), "x");
    EXPECT_EQ(comparison.at("differences")[0].at("right").at("value"), "y");
    EXPECT_EQ(comparison.at("differences")[0].at("right").at("store"), "LocalFileConfigStore");
    EXPECT_EQ(profile.shell({"diff " + file}).exitCode, 1);
}

TEST(Diff, ComparesReports) {
    const Profile profile;
    const auto writeReport = [&](const std::string& name) {
        auto file = (profile.root() / name).string();
        EXPECT_EQ(profile.run({"report", "-o", file}).exitCode, 0);
        return file;
    };
    const auto empty = writeReport("empty.xml");
    EXPECT_EQ(profile.run({"diff", empty}).exitCode, 0);
    ASSERT_EQ(profile.run({"set", "Note", "x"}).exitCode, 0);
    const auto one = writeReport("one.xml");
    EXPECT_EQ(profile.run({"diff", one}).exitCode, 0);
    EXPECT_THAT(profile.run({"diff", empty, one}).out, HasSubstr("+note = \"x\"  # LocalFileConfigStore\n"));
    const auto inJson = profile.write("one.json", profile.run({"--json", "report"}).out);
    EXPECT_EQ(profile.run({"diff", one, inJson}).exitCode, 0);
    EXPECT_THAT(profile.run({"diff", empty, inJson}).out, HasSubstr("+note = \"x\"  # LocalFileConfigStore\n"));
}

TEST(Diff, PrintsNoSecretOnItsOwn) {
    const Profile left;
    const Profile right;
    ASSERT_EQ(left.run({"set", "connectionpassword", "planted-secret"}).exitCode, 0);
    const auto file = (left.root() / "a.dump").string();
    ASSERT_EQ(left.run({"--show-secrets", "dump", "-o", file}).exitCode, 0);
    for (const auto& operand : {left.root().string(), file}) {
        const auto outcome = right.run({"diff", operand});
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_THAT(outcome.out, AllOf(HasSubstr("connectionpassword = hidden"), Not(HasSubstr("planted-secret"))));
        EXPECT_THAT(right.run({"--show-secrets", "diff", operand}).out, HasSubstr("planted-secret"));
    }
}

TEST(Diff, ReportsSecretsThatItCannotCompare) {
    const Profile profile;
    ASSERT_EQ(profile.run({"set", "connectionpassword", "planted-secret"}).exitCode, 0);
    const auto file = profile.write("a.dump", profile.run({"dump"}).out);
    const auto outcome = profile.run({"diff", file});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.error, HasSubstr("because a file does not contain their values: 1"));
}

TEST(Diff, RefusesAProfileInTheShellAndOtherFiles) {
    const Profile profile;
    const Profile other;
    const auto outcome = profile.shell({"diff " + other.root().generic_string()});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_THAT(outcome.error, HasSubstr("compare profiles outside it"));
    EXPECT_EQ(profile.run({"diff", "/nonexistent"}).exitCode, 3);
    for (const auto* content : {"<Config/>", R"({"type":"list","values":[]})", R"({"type":"report"})", "no dump"}) {
        const auto refused = profile.run({"diff", profile.write("a.file", content)});
        EXPECT_EQ(refused.exitCode, 3) << content;
        EXPECT_THAT(refused.error, HasSubstr("diff reads what dump and report write, with or without --json"));
    }
}

} // namespace program_test
