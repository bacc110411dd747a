#pragma once

#include <memory>
#include <string>
#include <vector>

namespace testing_host {

/// A started program with pipes as its standard streams. All texts are UTF-8. Different threads may use different
/// streams. The destructor closes the pipes and waits for the end of the program.
class RunningProcess {
public:
    /// Starts the program. Throws std::runtime_error if it cannot be started.
    RunningProcess(const std::string& program, const std::vector<std::string>& arguments);
    ~RunningProcess();
    RunningProcess(const RunningProcess&) = delete;
    RunningProcess& operator=(const RunningProcess&) = delete;

    /// The system's number of the process.
    int getId() const;
    /// Writes to the standard input. What a program that has ended does not read is lost.
    void write(const std::string& text) const;
    void closeInput();
    /// Waits for output and returns it; returns an empty text at the end of the output.
    std::string readOutput() const;
    std::string readError() const;
    /// Ends the process at once, without its cooperation, and waits for its end.
    void kill() const;
    /// Waits for the end and returns the exit code. The program may wait for a reader of its output.
    int waitForEnd() const;

private:
    struct Handles;

    std::unique_ptr<Handles> handles;
};

} // namespace testing_host
