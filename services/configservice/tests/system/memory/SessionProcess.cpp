#include "SessionProcess.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace memory_test {

namespace {

void makePipe(int (&ends)[2]) {
    if (pipe2(ends, O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
}

} // namespace

SessionProcess::SessionProcess(const testing_host::TemporaryProfile& profile, const std::string& scenario,
                               std::vector<std::string> runner)
    : folder(profile.root().string()) {
    const std::string errors = folder + "/stderr";
    auto command = std::move(runner);
    command.insert(command.end(), {LUMORA_MEMORY_SESSION, profile.config().string(), profile.data().string(),
                                   profile.state().string(), scenario});
    int inputEnds[2];
    int outputEnds[2];
    makePipe(inputEnds);
    makePipe(outputEnds);
    child = fork();
    if (child == 0) {
        const int errorFile = open(errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(inputEnds[0], STDIN_FILENO);
        dup2(outputEnds[1], STDOUT_FILENO);
        dup2(errorFile, STDERR_FILENO);
        become(std::move(command));
    }
    close(inputEnds[0]);
    close(outputEnds[1]);
    input = inputEnds[1];
    output = outputEnds[0];
    if (child < 0) {
        throw std::system_error(errno, std::generic_category(), "fork");
    }
}

SessionProcess::~SessionProcess() {
    close(input);
    close(output);
    while (child > 0 && waitpid(child, nullptr, 0) == -1 && errno == EINTR) {
    }
}

void SessionProcess::become(std::vector<std::string> command) {
    std::vector<char*> arguments;
    for (auto& argument : command) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    execv(arguments.front(), arguments.data());
    _exit(EXIT_FAILURE);
}

void SessionProcess::tell(const std::string& line) const {
    const std::string bytes = line + "\n";
    if (write(input, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
        throw std::system_error(errno, std::generic_category(), "write");
    }
}

bool SessionProcess::waitUntilDone() const {
    std::string line;
    char byte = 0;
    while (read(output, &byte, 1) == 1) {
        if (byte != '\n') {
            line += byte;
        } else if (line == "ready") {
            return true;
        } else {
            line.clear();
        }
    }
    return false;
}

} // namespace memory_test
