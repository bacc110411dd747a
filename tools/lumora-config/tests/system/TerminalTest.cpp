#include "Program.h"

#include <gmock/gmock.h>

namespace program_test {

using testing::HasSubstr;
using testing::Not;

namespace {

constexpr auto emphasis = "\x1b[1;32m";

/// Explains a key with standard output on a terminal, under these settings of the environment.
std::string explainOnTerminal(const Profile& profile, const std::string& environment) {
    const auto command = "env -u NO_COLOR " + environment + " " LUMORA_CONFIG_PROGRAM " --profile " +
                         profile.root().string() + " explain Theme";
    return runProcess("/usr/bin/script", {"-qec", command, "/dev/null"}).out;
}

} // namespace

TEST(Terminal, ShowsTheWinnerInColour) {
    const Profile profile;
    EXPECT_THAT(explainOnTerminal(profile, "TERM=xterm"), HasSubstr(emphasis));
}

TEST(Terminal, ColoursCanBeDeclined) {
    const Profile profile;
    for (const auto* environment : {"TERM=xterm NO_COLOR=1", "TERM=dumb"}) {
        const auto shown = explainOnTerminal(profile, environment);
        EXPECT_THAT(shown, HasSubstr("system"));
        EXPECT_THAT(shown, Not(HasSubstr("\x1b")));
    }
}

TEST(Terminal, AFileGetsNoColours) {
    const Profile profile;
    EXPECT_THAT(profile.run({"explain", "Theme"}).out, Not(HasSubstr("\x1b")));
}

} // namespace program_test
