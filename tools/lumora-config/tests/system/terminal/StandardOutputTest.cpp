#include "Program.h"

#include <gmock/gmock.h>

namespace program_test {

using testing::HasSubstr;

namespace {

constexpr auto toFullDevice = "exec \"$@\" >/dev/full";
constexpr auto toClosedStream = "exec \"$@\" >&-";
/// A pipe whose reader ends before the program starts, with the default action for the signal.
constexpr auto toClosedPipe = "mkfifo \"$0\" && exec 4<>\"$0\" 5>\"$0\" 4<&- && "
                              "exec env --default-signal=PIPE \"$@\" >&5";

/// Runs the program with its standard output redirected by shell words.
Outcome runInto(const char* redirection, const Profile& profile, const Arguments& arguments,
                const std::string& input = {}) {
    const auto pipe = (profile.root() / "pipe").string();
    std::filesystem::remove(pipe);
    Arguments all{"-c", redirection, pipe, LUMORA_CONFIG_PROGRAM, "--profile", profile.root().string()};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runProcess("/bin/sh", all, input);
}

} // namespace

TEST(StandardOutput, IsAnErrorIfItIsFull) {
    const Profile profile;
    for (const auto& arguments : {Arguments{"get", "Theme"}, Arguments{"--json", "list"}, Arguments{"report"},
                                  Arguments{"--help"}, Arguments{"--version"}}) {
        const auto outcome = runInto(toFullDevice, profile, arguments);
        EXPECT_EQ(outcome.exitCode, 3) << arguments.front();
        EXPECT_THAT(outcome.error, HasSubstr("standard output cannot be written: No space left on device\n"));
    }
}

TEST(StandardOutput, IsAnErrorIfItIsClosedAndNoFileIsDamaged) {
    const Profile profile;
    const auto outcome = runInto(toClosedStream, profile, {"shell"}, "set Greeting hello\nget Greeting\n");
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.error, HasSubstr("standard output cannot be written"));
    EXPECT_EQ(profile.run({"get", "Greeting"}).out, "hello\n");
}

TEST(StandardOutput, MayBeClosedOrFullIfItIsNotNeeded) {
    const Profile profile;
    for (const auto* redirection : {toFullDevice, toClosedStream, toClosedPipe}) {
        const auto outcome = runInto(redirection, profile, {"set", "Theme", "dark"});
        EXPECT_EQ(outcome.exitCode, 0) << redirection << outcome.error;
    }
}

TEST(StandardOutput, TheProgramEndsWithoutAMessageIfNobodyReads) {
    const Profile profile;
    for (const auto& arguments : {Arguments{"get", "Theme"}, Arguments{"--json", "list"}, Arguments{"report"},
                                  Arguments{"--help"}, Arguments{"--version"}}) {
        const auto outcome = runInto(toClosedPipe, profile, arguments);
        EXPECT_EQ(outcome.exitCode, 0) << arguments.front();
        EXPECT_EQ(outcome.error, "") << arguments.front();
    }
}

TEST(StandardOutput, TheShellEndsWithAcknowledgedChangesOnDiskIfNobodyReads) {
    const Profile profile;
    const auto outcome =
        runInto(toClosedPipe, profile, {"shell"}, "set First 1\nget First\nset Second 2\nget Second\n");
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.error, "First set; in force: \"1\" from LocalFileConfigStore\n");
    EXPECT_EQ(profile.run({"get", "First"}).out, "1\n");
    EXPECT_EQ(profile.run({"get", "Second"}).exitCode, 1);
}

TEST(StandardOutput, TheShellEndsWithAnErrorIfItIsFull) {
    const Profile profile;
    const auto outcome = runInto(toFullDevice, profile, {"shell"}, "get NoSuchKey\nget Theme\nset Second 2\n");
    EXPECT_EQ(outcome.exitCode, 3);
    EXPECT_THAT(outcome.error, HasSubstr("standard output cannot be written: No space left on device\n"));
    EXPECT_EQ(profile.run({"get", "Second"}).exitCode, 1);
}

} // namespace program_test
