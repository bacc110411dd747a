#pragma once

#include <stdexcept>
#include <string>

namespace lumora_config {

/// What the program ends with; part of its interface.
enum class ExitCode : int {
    Done = 0,        ///< Found or done.
    NotFound = 1,    ///< Not found or refused.
    Usage = 2,       ///< The command line makes no sense.
    Environment = 3, ///< No plug-in, profile in use, unreadable file.
};

/// Ends a command: the message goes to the user as it is, the code to the caller of the program.
class Failure : public std::runtime_error {
public:
    Failure(ExitCode exitCode, const std::string& message) : std::runtime_error(message), code(exitCode) {}

    ExitCode getCode() const noexcept { return code; }

private:
    ExitCode code;
};

} // namespace lumora_config
