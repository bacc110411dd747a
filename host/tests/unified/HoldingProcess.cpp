#include "HoldingProcess.h"

#include <unified/ProfileLock.h>

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <stdexcept>

namespace testing_host {

struct HoldingProcess::Process {
    pid_t id = 0;
};

HoldingProcess::HoldingProcess(const std::string& configDirectory, const std::string& stateDirectory)
    : process(std::make_unique<Process>()) {
    int ready[2];
    if (pipe(ready) != 0) {
        throw std::runtime_error("no pipe");
    }
    process->id = fork();
    if (process->id == 0) {
        const ZelUnified::ProfileLock lock(configDirectory, stateDirectory);
        const char answer = lock.isHeld() ? 'y' : 'n';
        if (write(ready[1], &answer, 1) == 1) {
            pause();
        }
        _exit(0);
    }
    close(ready[1]);
    char answer = 0;
    const bool isAnswered = read(ready[0], &answer, 1) == 1;
    close(ready[0]);
    if (!isAnswered || answer != 'y') {
        end();
        throw std::runtime_error("the other process does not hold the lock");
    }
}

HoldingProcess::~HoldingProcess() {
    end();
}

long HoldingProcess::getId() const {
    return process->id;
}

void HoldingProcess::end() {
    if (process->id > 0) {
        kill(process->id, SIGKILL);
        waitpid(process->id, nullptr, 0);
        process->id = 0;
    }
}

} // namespace testing_host
