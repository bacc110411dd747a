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

std::string originOfPolicy() {
    return "(RegistryConfigStore, "; // the file follows
}

void Profile::writePolicy(const std::string& name, const std::string& value) const {
    write("data/registry/policy.reg",
          "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\Policies"
          "\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC]\r\n\"" +
              name + "\"=\"" + value + "\"\r\n");
}

void Profile::removePolicy() const {
    std::filesystem::remove(base / "data/registry/policy.reg");
}

struct RunningShell::Process {
    int id = -1;
    int input = -1;
    int output = -1;

    void closeInput() {
        if (input >= 0) {
            close(std::exchange(input, -1));
        }
    }
};

RunningShell::RunningShell(const Profile& profile) : process(std::make_unique<Process>()) {
    const Pipe in;
    const Pipe out;
    const Pipe error;
    process->id =
        start(LUMORA_CONFIG_PROGRAM, {"--profile", profile.root().string(), "--json", "shell"}, in, out, error);
    close(error.readEnd);
    process->input = in.writeEnd;
    process->output = out.readEnd;
    send("wait");
    receive();
}

RunningShell::~RunningShell() {
    process->closeInput();
    if (process->id > 0) {
        waitForEnd();
    }
}

int RunningShell::getProcess() const {
    return process->id;
}

void RunningShell::send(const std::string& line) const {
    writeAll(process->input, line + '\n');
}

nlohmann::json RunningShell::receive() const {
    std::string line;
    for (char next = '\0'; read(process->output, &next, 1) == 1;) {
        if (next == '\n') {
            return nlohmann::json::parse(line);
        }
        line += next;
    }
    throw std::runtime_error("the shell does not answer");
}

void RunningShell::signal(int number) const {
    kill(process->id, number);
}

void RunningShell::awaitOutput() const {
    pollfd source{process->output, POLLIN, 0};
    poll(&source, 1, -1);
}

int RunningShell::signalUntilEnd(int number) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (std::chrono::steady_clock::now() < deadline) {
        int status = 0;
        kill(process->id, number);
        if (waitpid(process->id, &status, WNOHANG) == process->id) {
            process->id = -1;
            return toExitCode(status);
        }
        std::this_thread::yield();
    }
    return -1;
}

int RunningShell::waitForEnd() {
    drain(process->output);
    return waitFor(std::exchange(process->id, -1));
}

} // namespace program_test
