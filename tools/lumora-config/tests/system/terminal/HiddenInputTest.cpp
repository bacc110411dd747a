#include "ShellTerminal.h"

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>
#include <thread>

namespace program_test {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

constexpr auto question = "value (not shown): ";
constexpr auto secret = "planted-secret";

Arguments setPassword(const Profile& profile) {
    return {LUMORA_CONFIG_PROGRAM, "--profile", profile.root().string(), "set", "connectionpassword", "-"};
}

/// Waits until the terminal no longer shows what is typed; this is no event on which a test could wait.
void awaitHiding(const ShellTerminal& terminal) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (terminal.isInUsualMode() && std::chrono::steady_clock::now() < deadline) {
        std::this_thread::yield();
    }
    EXPECT_FALSE(terminal.isInUsualMode());
}

std::string getPassword(const Profile& profile) {
    return profile.run({"--show-secrets", "get", "connectionpassword"}).out;
}

} // namespace

TEST(HiddenInput, ATypedValueIsNotShownAndEndsWithItsLine) {
    const Profile profile;
    ShellTerminal terminal(setPassword(profile));
    terminal.await(question);
    EXPECT_FALSE(terminal.isInUsualMode());
    terminal.type(std::string(secret) + '\r');
    EXPECT_THAT(terminal.await("connectionpassword set"), Not(HasSubstr(secret)));
    EXPECT_EQ(terminal.waitForEnd(), 0);
    EXPECT_TRUE(terminal.isInUsualMode());
    EXPECT_EQ(getPassword(profile), std::string(secret) + '\n');
}

TEST(HiddenInput, TheShellDoesNotShowATypedValueAndContinues) {
    for (const auto* terminalName : {"xterm", "dumb"}) {
        const Profile profile;
        ShellTerminal shell(profile, terminalName);
        shell.type("set connectionpassword -\r");
        shell.await(question);
        shell.type(std::string(secret) + '\r');
        EXPECT_THAT(shell.await("connectionpassword set"), Not(HasSubstr(secret))) << terminalName;
        shell.await("lumora> ");
        shell.type("get Theme\r");
        shell.await("\nsystem");
        shell.await("lumora> ");
        shell.type("quit\r");
        EXPECT_EQ(shell.waitForEnd(), 0);
        EXPECT_EQ(getPassword(profile), std::string(secret) + '\n');
    }
}

TEST(HiddenInput, TheEndOfTheInputIsNoValue) {
    const Profile profile;
    ShellTerminal terminal(setPassword(profile));
    terminal.await(question);
    terminal.type("\x04");
    terminal.await("has no line with the value");
    EXPECT_EQ(terminal.waitForEnd(), 1);
}

TEST(HiddenInput, EachSignalThatEndsTheProgramLeavesTheTerminalInItsUsualMode) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP, SIGQUIT}) {
        const Profile profile;
        ShellTerminal terminal(setPassword(profile));
        terminal.await(question);
        EXPECT_FALSE(terminal.isInUsualMode());
        terminal.signal(number);
        EXPECT_EQ(terminal.waitForEnd(), 128 + number);
        EXPECT_TRUE(terminal.isInUsualMode()) << number;
        EXPECT_EQ(getPassword(profile), "");
    }
}

TEST(HiddenInput, AStoppedProgramShowsInputAgainAndHidesItWhenItContinues) {
    const Profile profile;
    std::string command;
    for (const auto& word : setPassword(profile)) {
        command += word + ' ';
    }
    // A shell with job control, which does not change the mode of the terminal.
    ShellTerminal terminal(Arguments{"/bin/sh", "-m", "-c", command + "; stty -a; fg"});
    terminal.await(question);
    terminal.type("\x1a");
    EXPECT_THAT(terminal.await("echok"), AllOf(HasSubstr(" echo "), Not(HasSubstr("-echo "))));
    awaitHiding(terminal);
    terminal.type(std::string(secret) + '\r');
    EXPECT_THAT(terminal.await("connectionpassword set"), Not(HasSubstr(secret)));
    EXPECT_EQ(terminal.waitForEnd(), 0);
    EXPECT_EQ(getPassword(profile), std::string(secret) + '\n');
}

} // namespace program_test
