#pragma once

#include <memory>
#include <string>

namespace testing_host {

/// Another process that holds the lock of a profile until it is killed.
class HoldingProcess {
public:
    /// Starts the process and waits until it holds the lock. Throws std::runtime_error if it does not.
    HoldingProcess(const std::string& configDirectory, const std::string& stateDirectory);
    ~HoldingProcess();
    HoldingProcess(const HoldingProcess&) = delete;
    HoldingProcess& operator=(const HoldingProcess&) = delete;

    /// The system's number of the process.
    long getId() const;
    /// Kills the process and waits for its end.
    void end();

private:
    struct Process;

    std::unique_ptr<Process> process;
};

} // namespace testing_host
