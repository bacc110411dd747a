#pragma once

#include "Failure.h"
#include "Session.h"

#include <istream>
#include <string>
#include <string_view>
#include <vector>

namespace lumora_config {

/// Reads commands, one a line, and runs them until "quit" or the end of the input, or until an answer could not be
/// written. An empty line and one that begins with "#" are passed over; a command that fails does not end the shell.
/// Main thread.
class Shell {
public:
    /// With `interactive` a prompt is printed on standard error.
    Shell(Session& commandSession, std::istream& commands, bool interactive);

    /// The first failure's code, Done when there was none.
    ExitCode run();

private:
    enum class Next { Continue, Quit };

    Next runLine(const std::string& line);
    void remember(ExitCode code);

    Session& session;
    std::istream& input;
    const bool prompting;
    ExitCode result = ExitCode::Done;
};

/// Splits a line at blanks. Single and double quotes hold text together; a backslash takes the next character as it is,
/// but not between single quotes. Throws Failure (Usage) when a quote is left open.
std::vector<std::string> splitWords(std::string_view line);

} // namespace lumora_config
