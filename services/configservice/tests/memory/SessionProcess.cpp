#include "SessionProcess.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace memory_test {

namespace {

void makePipe(int (&ends)[2]) {
    if (pipe2(ends, O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "pipe");
    }
}

} // namespace

SessionProcess::SessionProcess(const testing_host::TemporaryProfile& profile, const std::string& scenario)
    : folder(profile.root().string()) {
    const std::string errors = folder + "/stderr";
    const std::string config = profile.config().string();
    const std::string data = profile.data().string();
    const std::string state = profile.state().string();
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
        execl(LUMORA_MEMORY_SESSION, LUMORA_MEMORY_SESSION, config.c_str(), data.c_str(), state.c_str(),
              scenario.c_str(), static_cast<char*>(nullptr));
        _exit(EXIT_FAILURE);
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

bool SessionProcess::waitUntilDone() const {
    char byte = 0;
    while (read(output, &byte, 1) == 1) {
        if (byte == '\n') {
            return true;
        }
    }
    return false;
}

} // namespace memory_test
