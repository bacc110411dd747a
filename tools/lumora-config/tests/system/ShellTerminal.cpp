#include "ShellTerminal.h"

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <utility>
#include <vector>

namespace program_test {

namespace {

constexpr int longestWait = 30'000; // milliseconds

} // namespace

ShellTerminal::ShellTerminal(const Profile& profile, const std::string& terminalName)
    : ShellTerminal(Arguments{LUMORA_CONFIG_PROGRAM, "--profile", profile.root().string(), "shell"}, terminalName) {
    await("lumora> ");
}

ShellTerminal::ShellTerminal(const Arguments& command, const std::string& terminalName) {
    auto words = command;
    std::vector<char*> pointers;
    for (auto& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    winsize size{24, 80, 0, 0};
    process = forkpty(&terminal, nullptr, nullptr, &size);
    if (process == 0) {
        setenv("TERM", terminalName.c_str(), 1);
        execv(pointers.front(), pointers.data());
        _exit(127);
    }
    if (process < 0) {
        throw std::runtime_error("no pseudo terminal");
    }
}

ShellTerminal::~ShellTerminal() {
    if (process > 0) {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
    close(terminal);
}

void ShellTerminal::type(const std::string& keys) const {
    if (write(terminal, keys.data(), keys.size()) != static_cast<ssize_t>(keys.size())) {
        throw std::runtime_error("the terminal accepts no keys");
    }
}

std::string ShellTerminal::await(const std::string& text) {
    for (;;) {
        if (const auto found = shown.find(text); found != std::string::npos) {
            const auto end = found + text.size();
            const auto result = shown.substr(0, end);
            shown.erase(0, end);
            return result;
        }
        if (!readMore()) {
            throw std::runtime_error("'" + text + "' does not appear, only: " + shown);
        }
    }
}

bool ShellTerminal::readMore() {
    pollfd source{terminal, POLLIN, 0};
    if (poll(&source, 1, longestWait) != 1) {
        return false;
    }
    std::array<char, 4096> buffer{};
    const auto length = read(terminal, buffer.data(), buffer.size());
    if (length <= 0) {
        return false; // Linux reports an error when the last process has closed the terminal
    }
    shown.append(buffer.data(), static_cast<std::size_t>(length));
    return true;
}

void ShellTerminal::signal(int number) const {
    kill(process, number);
}

int ShellTerminal::waitForEnd() {
    while (readMore()) {
    }
    pollfd source{terminal, POLLIN, 0};
    if (poll(&source, 1, 0) != 1) {
        throw std::runtime_error("the shell does not end");
    }
    int status = 0;
    waitpid(std::exchange(process, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

bool ShellTerminal::isInUsualMode() const {
    termios mode{};
    return tcgetattr(terminal, &mode) == 0 && (mode.c_lflag & ICANON) != 0 && (mode.c_lflag & ECHO) != 0;
}

} // namespace program_test
