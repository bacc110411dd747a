#include "ProgramRun.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace fleet_test {

std::string findProgram(const std::string& name) {
    std::stringstream path(std::getenv("PATH") != nullptr ? std::getenv("PATH") : "/usr/bin");
    for (std::string directory; std::getline(path, directory, ':');) {
        const auto program = directory + '/' + name;
        if (::access(program.c_str(), X_OK) == 0) {
            return program;
        }
    }
    return {};
}

std::pair<pid_t, int> spawnProgram(const std::string& program, const std::vector<std::string>& arguments) {
    std::vector<char*> words{const_cast<char*>(program.c_str())};
    for (const auto& argument : arguments) {
        words.push_back(const_cast<char*>(argument.c_str()));
    }
    words.push_back(nullptr);
    std::array<int, 2> ends{};
    if (program.empty() || ::pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no program, or no pipe");
    }
    const auto parent = ::getpid();
    const auto process = ::fork();
    if (process == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        if (::getppid() != parent) {
            ::_exit(1);
        }
        ::dup2(ends[1], STDOUT_FILENO);
        ::dup2(ends[1], STDERR_FILENO);
        ::execv(words.front(), words.data());
        ::_exit(127);
    }
    ::close(ends[1]);
    return {process, ends[0]};
}

ProgramResult runProgram(const std::string& program, const std::vector<std::string>& arguments) {
    const auto [process, pipe] = spawnProgram(program, arguments);
    ProgramResult result;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 0; (count = ::read(pipe, buffer.data(), buffer.size())) > 0;) {
        result.output.append(buffer.data(), static_cast<std::size_t>(count));
    }
    ::close(pipe);
    int status = 0;
    ::waitpid(process, &status, 0);
    result.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

int endProgram(pid_t process, int signal) {
    ::kill(process, signal);
    int status = 0;
    ::waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

} // namespace fleet_test
