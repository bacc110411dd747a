#include "Program.h"

#include <TemporaryProfile.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <random>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <utility>

namespace program_test {

namespace fs = std::filesystem;

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

std::vector<nlohmann::json> Outcome::lines() const {
    std::vector<nlohmann::json> objects;
    std::istringstream stream(out);
    for (std::string line; std::getline(stream, line);) {
        objects.push_back(nlohmann::json::parse(line));
    }
    return objects;
}

std::size_t lineOf(const std::filesystem::path& file, std::string_view text) {
    std::ifstream stream(file);
    std::string line;
    for (std::size_t number = 1; std::getline(stream, line); ++number) {
        if (line.find(text) != std::string::npos) {
            return number;
        }
    }
    return 0;
}

std::vector<std::string> storeNames(const nlohmann::json& answer) {
    std::vector<std::string> names;
    for (const auto& store : answer.at("stores")) {
        names.push_back(store.at("name"));
    }
    return names;
}

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

Profile::Profile() {
    std::random_device random;
    do {
        base = fs::temp_directory_path() / ("lumora-program-" + std::to_string(random()));
    } while (!fs::create_directory(base));
    fs::create_directory(base / "resources");
    fs::copy_file(fs::path(LUMORA_SOURCE_FOLDER) / "examples/profile/resources/lumora-config-defaults.xml",
                  defaultsFile());
}

Profile::~Profile() {
    std::error_code ignored;
    fs::remove_all(base, ignored);
}

std::string Profile::write(const std::string& name, std::string_view content) const {
    testing_host::writeFile(base / name, content);
    return (base / name).string();
}

std::string Profile::writeDocument(const std::string& name, std::string_view elements) const {
    return write(name, "<Config><Group>" + std::string(elements) + "</Group></Config>");
}

void Profile::writePolicy(const std::string& name, const std::string& value) const {
    write("data/registry/policy.reg",
          "Windows Registry Editor Version 5.00\r\n\r\n[HKEY_CURRENT_USER\\Software\\Policies"
          "\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC]\r\n\"" +
              name + "\"=\"" + value + "\"\r\n");
}

Outcome Profile::run(const Arguments& arguments, const std::string& input) const {
    Arguments all{"--profile", base.string()};
    all.insert(all.end(), arguments.begin(), arguments.end());
    return runProcess(LUMORA_CONFIG_PROGRAM, all, input);
}

Outcome Profile::shell(const Arguments& lines, const Arguments& options) const {
    std::string input;
    for (const auto& line : lines) {
        input += line + '\n';
    }
    auto arguments = options;
    arguments.emplace_back("shell");
    return run(arguments, input);
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
