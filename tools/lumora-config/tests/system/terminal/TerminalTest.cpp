#include "Program.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace program_test {

using testing::HasSubstr;
using testing::Not;

namespace {

constexpr auto emphasis = "\x1b[1;32m";

/// Runs the program on a terminal of 60 columns with these environment variables. The arguments are shell words.
std::string runOnTerminal(const Profile& profile, const std::string& environment, const std::string& arguments) {
    const auto command = "stty cols 60; env -u NO_COLOR " + environment + " " LUMORA_CONFIG_PROGRAM " --profile " +
                         profile.root().string() + " " + arguments;
    return runProcess("/usr/bin/script", {"-qec", command, "/dev/null"}).out;
}

std::string explainOnTerminal(const Profile& profile, const std::string& environment) {
    return runOnTerminal(profile, environment, "explain Theme");
}

constexpr auto plainTerminal = "TERM=dumb";
constexpr auto hostileDocument = "<Hostile>a&#x9b;b&#x7f;c\nd</Hostile>";
constexpr auto hostileValue = "a\xC2\x9B"
                              "b\x7F"
                              "c\nd";
constexpr auto hostileValueEscaped = "a\\u009bb\\x7fc\\nd";

} // namespace

TEST(Terminal, ShowsTheWinnerInColour) {
    const Profile profile;
    EXPECT_THAT(explainOnTerminal(profile, "TERM=xterm"), HasSubstr(emphasis));
    EXPECT_THAT(explainOnTerminal(profile, "TERM=xterm NO_COLOR="), HasSubstr(emphasis));
}

TEST(Terminal, TheEnvironmentDisablesColours) {
    const Profile profile;
    for (const auto* environment : {"TERM=xterm NO_COLOR=1", "TERM=dumb"}) {
        const auto shown = explainOnTerminal(profile, environment);
        EXPECT_THAT(shown, HasSubstr("system"));
        EXPECT_THAT(shown, Not(HasSubstr("\x1b")));
    }
}

TEST(Terminal, GetsControlCharactersOfValuesEscaped) {
    const Profile profile;
    const auto store = "--store " + profile.writeDocument("a.xml", hostileDocument) + ":Foreign:40 ";
    for (const auto* command : {"get Hostile", "get Hostile --origin", "list Hostile", "explain Hostile"}) {
        EXPECT_THAT(runOnTerminal(profile, plainTerminal, store + command), HasSubstr(hostileValueEscaped)) << command;
    }
    EXPECT_THAT(runOnTerminal(profile, plainTerminal, store + "report"), HasSubstr("a\\u009bb\\x7fc\r\nd"));
    EXPECT_THAT(runOnTerminal(profile, plainTerminal, store + "--json get Hostile"),
                HasSubstr("a\\u009bb\\u007fc\\nd"));
}

TEST(Terminal, GetsJsonInAscii) {
    const Profile profile;
    profile.run({"set", "Name", "\xC3\xA4"});
    EXPECT_THAT(runOnTerminal(profile, plainTerminal, "--json get Name"), HasSubstr(R"("value":"\u00e4")"));
}

TEST(Terminal, APipeGetsTheBytesOfAValue) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", hostileDocument);
    EXPECT_EQ(profile.run({"--store", file + ":Foreign:40", "get", "Hostile"}).out, std::string(hostileValue) + '\n');
    EXPECT_EQ(profile.run({"--store", file + ":Foreign:40", "--json", "get", "Hostile"}).lines().at(0).at("value"),
              hostileValue);
}

TEST(Terminal, APipeGetsOneLineForEachRow) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", hostileDocument);
    const auto lineBreak = "\xC2\x85"; // U+0085, next line
    const Arguments store{"--store", file + ":A\n" + lineBreak + "B:40"};
    for (const auto* command : {"list", "stores", "explain"}) {
        auto arguments = store;
        arguments.emplace_back(command);
        if (std::string_view(command) != "stores") {
            arguments.emplace_back("Hostile");
        }
        const auto shown = profile.run(arguments).out;
        EXPECT_THAT(shown, HasSubstr("A\\n\\u0085B")) << command;
        EXPECT_THAT(shown, Not(HasSubstr(lineBreak))) << command;
        EXPECT_THAT(shown, Not(HasSubstr("\xC2\x9B"))) << command;
    }
}

TEST(Terminal, MessagesAreOneLineWithoutControlCharacters) {
    const Profile profile;
    const std::string hostile = "Key\x1b[2J\xC2\x9B\nlumora-config: all is well";
    const std::string escaped = "Key\\x1b[2J\\u009b\\nlumora-config: all is well";
    for (const auto& arguments :
         {Arguments{"get", hostile}, Arguments{"--json", "get", hostile}, Arguments{"set", hostile, "x"},
          Arguments{"get", "Theme", "--store", hostile}, Arguments{"stores", hostile}, Arguments{"mdm", hostile}}) {
        const auto shown = profile.run(arguments).error;
        EXPECT_THAT(shown, HasSubstr(escaped));
        EXPECT_EQ(std::ranges::count(shown, '\n'), 1) << shown;
    }
}

TEST(Terminal, GetsControlCharactersOfLogLinesEscaped) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<Any>x</Any>");
    const auto shown =
        runOnTerminal(profile, plainTerminal, "-v --store \"" + file + ":A$(printf '\\033')B:40\" get Theme");
    EXPECT_THAT(shown, HasSubstr("A\\x1bB"));
    EXPECT_THAT(shown, Not(HasSubstr("\x1b")));
}

TEST(Terminal, ALongValueIsTruncatedToTheLine) {
    const Profile profile;
    const auto file = profile.writeDocument("a.xml", "<Long>" + std::string(1'000'000, 'x') + "</Long>");
    const auto shown = runOnTerminal(profile, plainTerminal, "--store " + file + ":Foreign:40 list Lon");
    EXPECT_EQ(shown,
              "  KEY   VALUE" + std::string(40, ' ') + "STORE\r\n  Long  \"" + std::string(41, 'x') + "…  Foreign\r\n");
}

TEST(Terminal, APipeGetsALongValueCompleteAndNoPadding) {
    const Profile profile;
    const std::string value(1'000'000, 'x');
    const auto file = profile.writeDocument("a.xml", "<Long>" + value + "</Long>");
    const auto shown = profile.run({"--store", file + ":Foreign:40", "list"}).out;
    EXPECT_THAT(shown, HasSubstr("  Long  \"" + value + "\"  Foreign\n"));
    EXPECT_THAT(shown, HasSubstr("  theme  \"system\"  lumora-config-defaults.xml\n"));
    EXPECT_LT(shown.size(), value.size() + 10'000);
}

TEST(Terminal, AFileGetsNoColours) {
    const Profile profile;
    EXPECT_THAT(profile.run({"explain", "Theme"}).out, Not(HasSubstr("\x1b")));
}

} // namespace program_test
