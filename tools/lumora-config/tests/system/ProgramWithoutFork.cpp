// Starts processes through the test library of the host, where a process cannot fork. There are no signals there.
#include "Program.h"

#include <kyr/StringUtils.h>

#include <PlatformRegistryKey.h>
#include <ProcessRun.h>
#include <RunningProcess.h>

#include <stdexcept>

namespace program_test {

Outcome runProcess(const std::string& program, const Arguments& arguments, const std::string& input) {
    auto run = testing_host::ProcessRun::start(program, arguments, input);
    return {run.exitCode, std::move(run.out), std::move(run.error)};
}

std::string originOfPolicy() {
    return "(RegistryConfigStore)";
}

/// The policy is in the registry of the user, which all profiles share.
struct Profile::Policy {
    testing_host::PlatformRegistryKey key{
        L"Software\\Policies\\Ventrix Systems, Inc.\\Unified Communications\\VentrixUC"};
};

void Profile::writePolicy(const std::string& name, const std::string& value) const {
    if (!policy) {
        policy = std::make_shared<Policy>();
    }
    policy->key.setText(L"", KyrCoreUtils::toWideString(name), KyrCoreUtils::toWideString(value));
}

void Profile::removePolicy() const {
    policy.reset();
}

struct RunningShell::Process {
    explicit Process(const Profile& profile)
        : running(LUMORA_CONFIG_PROGRAM, {"--profile", profile.root().string(), "--json", "shell"}) {}

    testing_host::RunningProcess running;
    std::string received;
};

RunningShell::RunningShell(const Profile& profile) : process(std::make_unique<Process>(profile)) {
    send("wait");
    receive();
}

RunningShell::~RunningShell() = default;

int RunningShell::getProcess() const {
    return process->running.getId();
}

void RunningShell::send(const std::string& line) const {
    process->running.write(line + '\n');
}

nlohmann::json RunningShell::receive() const {
    auto& received = process->received;
    auto end = received.find('\n');
    while (end == std::string::npos) {
        const auto next = process->running.readOutput();
        if (next.empty()) {
            throw std::runtime_error("the shell does not answer");
        }
        received += next;
        end = received.find('\n');
    }
    const auto line = received.substr(0, end);
    received.erase(0, end + 1);
    return nlohmann::json::parse(line);
}

} // namespace program_test
