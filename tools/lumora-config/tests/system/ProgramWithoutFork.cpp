// Starts processes through the test library of the host, where a process cannot fork. A shell that stays open cannot be
// tested there.
#include "Program.h"

#include <ProcessRun.h>

#include <stdexcept>

namespace program_test {

Outcome runProcess(const std::string& program, const Arguments& arguments, const std::string& input) {
    auto run = testing_host::ProcessRun::start(program, arguments, input);
    return {run.exitCode, std::move(run.out), std::move(run.error)};
}

RunningShell::RunningShell(const Profile& /*profile*/) {
    throw std::runtime_error("a shell cannot stay open on this platform");
}

RunningShell::~RunningShell() = default;

void RunningShell::send(const std::string& /*line*/) const {}

nlohmann::json RunningShell::receive() const {
    return {};
}

void RunningShell::signal(int /*number*/) const {}

void RunningShell::awaitOutput() const {}

int RunningShell::signalUntilEnd(int /*number*/) {
    return -1;
}

int RunningShell::waitForEnd() {
    return -1;
}

void RunningShell::closeInput() {}

} // namespace program_test
