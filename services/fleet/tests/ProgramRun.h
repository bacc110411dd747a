#pragma once

#include <sys/types.h>

#include <string>
#include <utility>
#include <vector>

namespace fleet_test {

/// Returns the path of a program of the system; "" if there is none.
std::string findProgram(const std::string& name);

/// Starts the program with both outputs in one pipe. Returns the process and the end of the pipe to read from. The
/// kernel kills the process when this one ends, in whatever way.
std::pair<pid_t, int> spawnProgram(const std::string& program, const std::vector<std::string>& arguments);

struct ProgramResult {
    int code = -1; ///< -1 if a signal has ended it.
    std::string output;
};

/// Runs the program to its end.
ProgramResult runProgram(const std::string& program, const std::vector<std::string>& arguments);

/// Sends the signal and waits for the end. Returns the exit code; -1 if the signal has ended the program.
int endProgram(pid_t process, int signal);

} // namespace fleet_test
