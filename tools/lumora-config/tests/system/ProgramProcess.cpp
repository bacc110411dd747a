#include "Program.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <thread>
#include <utility>

namespace program_test {

namespace {

struct Pipe {
    int readEnd = -1;
    int writeEnd = -1;

    Pipe() {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) {
            throw std::runtime_error("no pipe");
        }
        readEnd = ends[0];
        writeEnd = ends[1];
    }
};

std::string drain(int descriptor) {
    std::string text;
    std::array<char, 4096> buffer{};
    for (;;) {
        const auto length = read(descriptor, buffer.data(), buffer.size());
        if (length <= 0) {
            close(descriptor);
            return text;
        }
        text.append(buffer.data(), static_cast<std::size_t>(length));
    }
}

int start(const std::string& program, const Arguments& arguments, const Pipe& in, const Pipe& out, const Pipe& error) {
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (auto& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    const int process = fork();
    if (process == 0) {
        dup2(in.readEnd, STDIN_FILENO);
        dup2(out.writeEnd, STDOUT_FILENO);
        dup2(error.writeEnd, STDERR_FILENO);
        execv(program.c_str(), pointers.data());
        _exit(127);
    }
    close(in.readEnd);
    close(out.writeEnd);
    close(error.writeEnd);
    return process;
}

int toExitCode(int status) {
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

int waitFor(int process) {
    int status = 0;
    waitpid(process, &status, 0);
    return toExitCode(status);
}

void writeAll(int descriptor, const std::string& text) {
    std::size_t written = 0;
    while (written < text.size()) {
        const auto length = write(descriptor, text.data() + written, text.size() - written);
        if (length <= 0) {
            break; // the program has ended without reading all input
        }
        written += static_cast<std::size_t>(length);
    }
}

} // namespace

Outcome runProcess(const std::string& program, const Arguments& arguments, const std::string& input) {
    signal(SIGPIPE, SIG_IGN);
    const Pipe in;
    const Pipe out;
    const Pipe error;
    const int process = start(program, arguments, in, out, error);
    Outcome outcome;
    std::thread errorReader([&] { outcome.error = drain(error.readEnd); });
    std::thread writer([&] {
        writeAll(in.writeEnd, input);
        close(in.writeEnd);
    });
    outcome.out = drain(out.readEnd);
    writer.join();
    errorReader.join();
    outcome.exitCode = waitFor(process);
    return outcome;
}

RunningShell::RunningShell(const Profile& profile) {
    const Pipe in;
    const Pipe out;
    const Pipe error;
    process = start(LUMORA_CONFIG_PROGRAM, {"--profile", profile.root().string(), "--json", "shell"}, in, out, error);
    close(error.readEnd);
    input = in.writeEnd;
    output = out.readEnd;
    send("wait");
    receive();
}

RunningShell::~RunningShell() {
    closeInput();
    if (process > 0) {
        waitForEnd();
    }
}

void RunningShell::send(const std::string& line) const {
    writeAll(input, line + '\n');
}

nlohmann::json RunningShell::receive() const {
    std::string line;
    for (char next = '\0'; read(output, &next, 1) == 1;) {
        if (next == '\n') {
            return nlohmann::json::parse(line);
        }
        line += next;
    }
    throw std::runtime_error("the shell does not answer");
}

void RunningShell::signal(int number) const {
    kill(process, number);
}

void RunningShell::awaitOutput() const {
    pollfd source{output, POLLIN, 0};
    poll(&source, 1, -1);
}

int RunningShell::signalUntilEnd(int number) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (std::chrono::steady_clock::now() < deadline) {
        int status = 0;
        kill(process, number);
        if (waitpid(process, &status, WNOHANG) == process) {
            process = -1;
            return toExitCode(status);
        }
        std::this_thread::yield();
    }
    return -1;
}

int RunningShell::waitForEnd() {
    drain(output);
    return waitFor(std::exchange(process, -1));
}

void RunningShell::closeInput() {
    if (input >= 0) {
        close(std::exchange(input, -1));
    }
}

} // namespace program_test
