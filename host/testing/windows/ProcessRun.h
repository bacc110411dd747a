#pragma once

#include <string>
#include <vector>

namespace testing_host {

/// The result of a finished process.
struct ProcessRun {
    /// Runs a program with `input` on its standard input and waits for its end. Throws std::runtime_error if it cannot
    /// be started. All texts are UTF-8.
    static ProcessRun start(const std::string& program, const std::vector<std::string>& arguments,
                            const std::string& input);

    int exitCode = -1;
    std::string out;
    std::string error;
};

} // namespace testing_host
