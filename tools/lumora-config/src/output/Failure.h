#pragma once

#include <stdexcept>
#include <string>

namespace lumora_config {

/// The exit code of the program; part of its interface.
enum class ExitCode : int {
    Done = 0,        ///< Found or done.
    NotFound = 1,    ///< Not found or refused.
    Usage = 2,       ///< The command line is invalid.
    Environment = 3, ///< No plug-in, profile in use, unreadable file.
};

/// Ends a command. The program shows the message unchanged and returns the code.
class Failure : public std::runtime_error {
public:
    Failure(ExitCode exitCode, const std::string& message) : std::runtime_error(message), code(exitCode) {}

    ExitCode getCode() const noexcept { return code; }

private:
    ExitCode code;
};

} // namespace lumora_config
