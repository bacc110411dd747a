// For platforms whose processes cannot fork: starts a program of its own.
#include "KeyProcesses.h"

#include <RunningProcess.h>

#include <memory>

namespace testing_host {

std::vector<std::string> makeKeysInProcesses(const std::string& dataDirectory, std::size_t count) {
    std::vector<std::unique_ptr<RunningProcess>> processes;
    for (std::size_t i = 0; i < count; ++i) {
        processes.push_back(std::make_unique<RunningProcess>(LUMORA_KEY_MAKER, std::vector{dataDirectory}));
    }
    for (const auto& process : processes) {
        process->readError(); // waits until it is ready
    }
    for (const auto& process : processes) {
        process->closeInput();
    }
    std::vector<std::string> seen;
    for (const auto& process : processes) {
        if (auto key = process->readOutput(); !key.empty()) {
            seen.push_back(std::move(key));
        }
    }
    return seen;
}

} // namespace testing_host
