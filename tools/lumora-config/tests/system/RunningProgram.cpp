#include "RunningProgram.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <stdexcept>
#include <utility>
#include <vector>

namespace program_test {

namespace {

constexpr int patience = 30000;

std::array<int, 2> openPipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    return ends;
}

/// Returns true if the process ends in time.
bool awaitEnd(int process) {
    const int handle = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
    pollfd source{handle, POLLIN, 0};
    const bool ended = handle >= 0 && poll(&source, 1, patience) == 1;
    close(handle);
    return ended;
}

} // namespace

RunningProgram::RunningProgram(const Profile& profile, const Arguments& arguments) {
    std::vector<std::string> words{LUMORA_CONFIG_PROGRAM, "--profile", profile.root().string(), "--json"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (auto& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    const auto out = openPipe();
    const auto messages = openPipe();
    const auto in = openPipe();
    process = fork();
    if (process == 0) {
        dup2(in[0], STDIN_FILENO);
        dup2(out[1], STDOUT_FILENO);
        dup2(messages[1], STDERR_FILENO);
        execv(pointers.front(), pointers.data());
        _exit(127);
    }
    close(out[1]);
    close(messages[1]);
    close(in[0]);
    input = in[1];
    output.descriptor = out[0];
    error.descriptor = messages[0];
}

RunningProgram::~RunningProgram() {
    if (process > 0) {
        kill(process, SIGKILL);
        waitpid(process, nullptr, 0);
    }
    close(input);
    close(output.descriptor);
    close(error.descriptor);
}

void RunningProgram::send(const std::string& line) const {
    const auto text = line + '\n';
    if (write(input, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        throw std::runtime_error("the program reads nothing more");
    }
}

nlohmann::json RunningProgram::receive() {
    return nlohmann::json::parse(receiveLine(output));
}

std::string RunningProgram::receiveMessage() {
    return receiveLine(error);
}

nlohmann::json RunningProgram::receiveUntil(const std::string& field, const std::string& text) {
    for (;;) {
        auto object = receive();
        if (object.value(field, "") == text) {
            return object;
        }
    }
}

void RunningProgram::signal(int number) const {
    kill(process, number);
}

int RunningProgram::waitForEnd() {
    if (!awaitEnd(process)) {
        return -1;
    }
    int status = 0;
    waitpid(std::exchange(process, -1), &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string RunningProgram::receiveLine(Stream& stream) {
    for (;;) {
        if (const auto end = stream.buffered.find('\n'); end != std::string::npos) {
            auto line = stream.buffered.substr(0, end);
            stream.buffered.erase(0, end + 1);
            return line;
        }
        pollfd source{stream.descriptor, POLLIN, 0};
        std::array<char, 4096> bytes{};
        const auto length = poll(&source, 1, patience) == 1 ? read(stream.descriptor, bytes.data(), bytes.size()) : 0;
        if (length <= 0) {
            throw std::runtime_error("the program says nothing more; so far: " + stream.buffered);
        }
        stream.buffered.append(bytes.data(), static_cast<std::size_t>(length));
    }
}

} // namespace program_test
