#include "bundle/BundleMask.h"

#include <gmock/gmock.h>

namespace lumora_config {

using testing::HasSubstr;
using testing::Not;

namespace {

BundleMask makeMask(const std::vector<std::string>& secrets) {
    return BundleMask({secrets, {"ConnectionPassword", "BDIConnectionUserDn"}, "jdoe", "desk7.example.org"});
}

constexpr auto start = "2026-01-02 03:04:05.678 info [Logger] Name::of ";

/// Returns what remains of a log line with this text.
std::string maskLine(const std::string& text) {
    const auto masked = makeMask({}).maskLog(start + text + '\n');
    EXPECT_TRUE(masked.starts_with(start)) << masked;
    return masked.substr(std::string(start).size());
}

} // namespace

TEST(BundleMask, ReplacesSecretsWhereverTheyOccur) {
    const auto mask = makeMask({"hunter2", "a<b&c\"d", " padded-secret\n", "line1\nline2"});
    EXPECT_EQ(mask.mask(std::string("xhunter2y hunter2")), "xVALUE_HIDDENy VALUE_HIDDEN");
    EXPECT_EQ(mask.mask(std::string("<v>a&lt;b&amp;c&quot;d</v>")), "<v>VALUE_HIDDEN</v>");
    EXPECT_EQ(mask.mask(std::string("\"padded-secret\"")), "\"VALUE_HIDDEN\"");
    EXPECT_EQ(mask.mask(std::string("line1\\nline2")), "VALUE_HIDDEN");
    EXPECT_EQ(mask.mask(std::wstring(L"hunter2")), L"VALUE_HIDDEN");
}

TEST(BundleMask, ReplacesTheLongerOfTwoSecretsFirst) {
    EXPECT_EQ(makeMask({"hunter", "hunter2-long"}).mask(std::string("hunter2-long")), "VALUE_HIDDEN");
}

TEST(BundleMask, LeavesTextsEqualToAVeryShortSecret) {
    EXPECT_EQ(makeMask({"1", ""}).mask(std::string("11 keys")), "11 keys");
}

TEST(BundleMask, MasksPersonalDataAndTheNamesOfUserAndMachine) {
    const auto mask = makeMask({});
    EXPECT_EQ(mask.mask(std::string("mail jane@example.com in /home/jane/x")),
              "mail <user>@example.com in /home/<user>/x");
    EXPECT_EQ(mask.mask(std::string("JDoe on desk7, desk7.example.org; jdoe2 xjdoe")),
              "<user> on <host>, <host>; jdoe2 xjdoe");
    EXPECT_EQ(BundleMask({{}, {}, "", "localhost"}).mask(std::string("localhost")), "localhost");
}

TEST(BundleMask, RemovesFromALogWhatFollowsASensitiveKey) {
    EXPECT_EQ(maskLine("connectionPASSWORD: hunter2, and more"), "connectionPASSWORD VALUE_HIDDEN\n");
    EXPECT_EQ(maskLine("set bdiconnectionuserdn to x"), "set bdiconnectionuserdn VALUE_HIDDEN\n");
    EXPECT_EQ(maskLine("the password = hunter2"), "the password VALUE_HIDDEN\n");
    EXPECT_EQ(maskLine("a password, then {\"token\": \"hunter2\"}"), "a password, then {\"token VALUE_HIDDEN\n");
    EXPECT_EQ(maskLine("no password was needed"), "no password was needed\n");
}

TEST(BundleMask, KeepsALineWhoseValueTheLogHasHidden) {
    const std::string hidden = "Key: connectionpassword -  Value - [VALUE_HIDDEN] valueStoreName [A]";
    EXPECT_EQ(maskLine(hidden), hidden + '\n');
    EXPECT_EQ(maskLine(hidden + "\nKey: bdiconnectionuserdn -  Value - [x]\nmore"),
              hidden + "\nKey: bdiconnectionuserdn VALUE_HIDDEN\n");
    EXPECT_EQ(maskLine("connectionpassword: hunter2; theme: VALUE_HIDDEN"), "connectionpassword VALUE_HIDDEN\n");
}

TEST(BundleMask, RemovesTheLinesThatContinueASecretUpToTheNextRecord) {
    const auto log = std::string(start) + "connectionpassword: one\ntwo\nthree\n" + start + "next\nline\n";
    EXPECT_EQ(makeMask({}).maskLog(log),
              std::string(start) + "connectionpassword VALUE_HIDDEN\n" + start + "next\nline\n");
    EXPECT_EQ(makeMask({}).maskLog("no line feed"), "no line feed");
    EXPECT_EQ(makeMask({}).maskLog(""), "");
}

TEST(BundleMask, RemovesTheContentsOfADamagedFile) {
    const std::string contents = "<Lumora>\n<Own sensitive=\"true\">VALUE_HIDDEN planted</Own>\n<Other>planted\n";
    const auto log =
        std::string(start) + "contents of invalid xml with string length: 70\n" + contents + start + "next\n";
    EXPECT_EQ(makeMask({}).maskLog(log),
              std::string(start) + "contents of invalid xml VALUE_HIDDEN\n" + start + "next\n");
}

} // namespace lumora_config
