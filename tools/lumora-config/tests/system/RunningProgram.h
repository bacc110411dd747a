#pragma once

#include "Program.h"

#include <nlohmann/json.hpp>
#include <string>

namespace program_test {

/// A running lumora-config with JSON answers. Every wait is bounded. The destructor kills it.
class RunningProgram {
public:
    /// Starts lumora-config --profile ROOT --json ARGUMENTS.
    RunningProgram(const Profile& profile, const Arguments& arguments);
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    /// Sends a line to the standard input.
    void send(const std::string& line) const;
    /// Waits for the next line of the output. Throws std::runtime_error if none comes.
    nlohmann::json receive();
    /// Waits for the next line of standard error. Throws std::runtime_error if none comes.
    std::string receiveMessage();
    /// Skips objects until one has this text in the field, and returns it.
    nlohmann::json receiveUntil(const std::string& field, const std::string& text);
    void signal(int number) const;
    /// Waits for the end. Returns the exit code as in Outcome, or -1 if the process goes on.
    int waitForEnd();
    int getProcess() const { return process; }

private:
    struct Stream {
        int descriptor = -1;
        std::string buffered;
    };

    static std::string receiveLine(Stream& stream);

    int process = -1;
    int input = -1;
    Stream output;
    Stream error;
};

} // namespace program_test
