// For platforms whose processes cannot fork: starts a program of its own.
#include "HoldingProcess.h"

#include <RunningProcess.h>

#include <stdexcept>

namespace testing_host {

struct HoldingProcess::Process {
    RunningProcess running;
};

HoldingProcess::HoldingProcess(const std::string& configDirectory, const std::string& stateDirectory)
    : process(new Process{{LUMORA_PROFILE_HOLDER, {configDirectory, stateDirectory}}}) {
    if (process->running.readOutput() != "y") {
        end();
        throw std::runtime_error("the other process does not hold the lock");
    }
}

HoldingProcess::~HoldingProcess() {
    end();
}

long HoldingProcess::getId() const {
    return process->running.getId();
}

void HoldingProcess::end() {
    process->running.kill();
}

} // namespace testing_host
