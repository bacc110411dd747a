#pragma once

#include "Session.h"
#include "output/Failure.h"

#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// Reads one command per line from standard input and runs it, until "quit", the end of the input, a signal that asks
/// the program to end, or a failure to write an answer. Skips empty lines and lines that begin with "#". A failing
/// command does not end the shell. Prints a prompt on standard error if a person types the commands. Main thread.
class Shell {
public:
    /// The session must outlive the shell.
    explicit Shell(Session& commandSession) : session(commandSession) {}

    /// Returns the exit code of the first failure, or Done.
    ExitCode run();

private:
    enum class Next { Continue, Quit };

    Next runLine(const std::string& line);
    void confirmWrites();
    /// Keeps the code of the first failure.
    void recordFailure(ExitCode code);

    Session& session;
    ExitCode result = ExitCode::Done;
};

/// Splits a line at blanks. Single and double quotes enclose one word. A backslash escapes the next character, except
/// in single quotes. Throws Failure (Usage) if a quote is not closed.
std::vector<std::string> splitWords(std::string_view line);

} // namespace lumora_config
