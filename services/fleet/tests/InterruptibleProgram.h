#pragma once

#include "ProgramRun.h"

#include <poll.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace fleet_test {

/// A program that runs until it is interrupted, and its output. The destructor kills it if it still runs. Not
/// thread-safe.
class InterruptibleProgram {
public:
    InterruptibleProgram(const std::string& program, const std::vector<std::string>& arguments) {
        std::tie(process, pipe) = spawnProgram(program, arguments);
    }
    ~InterruptibleProgram() {
        if (process > 0) {
            endProgram(process, SIGKILL);
        }
        ::close(pipe);
    }
    InterruptibleProgram(const InterruptibleProgram&) = delete;
    InterruptibleProgram& operator=(const InterruptibleProgram&) = delete;

    /// Reads until the output contains the text. Returns false if the program ends before, or prints nothing for a
    /// minute.
    bool readUntil(const std::string& text) {
        std::array<char, 512> buffer{};
        while (output.find(text) == std::string::npos) {
            pollfd readable{pipe, POLLIN, 0};
            if (::poll(&readable, 1, 60000) <= 0) {
                return false;
            }
            const auto count = ::read(pipe, buffer.data(), buffer.size());
            if (count <= 0) {
                return false;
            }
            output.append(buffer.data(), static_cast<std::size_t>(count));
        }
        return true;
    }
    const std::string& getOutput() const { return output; }
    /// Returns the exit code. Called once.
    int interrupt() { return endProgram(std::exchange(process, -1), SIGINT); }

private:
    pid_t process = -1;
    int pipe = -1;
    std::string output;
};

} // namespace fleet_test
