#pragma once

#include "Failure.h"
#include "Session.h"

#include <functional>
#include <istream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumora_config {

/// Reads commands, one a line, and runs them until "quit" or the end of the input, or until an answer could not be
/// written. An empty line and one that begins with "#" are passed over; a command that fails does not end the shell.
/// Main thread.
class Shell {
public:
    /// With `interactive` a prompt is printed on standard error.
    Shell(Session& commandSession, std::istream& commands, bool interactive);

    /// Before each line the shell asks `question` and ends, as at the end of its input, if the answer is true.
    void endWhen(std::function<bool()> question) { mustEnd = std::move(question); }

    /// The first failure's code, Done when there was none.
    ExitCode run();

private:
    enum class Next { Continue, Quit };

    Next runLine(const std::string& line);
    void confirmWrites();
    void remember(ExitCode code);

    Session& session;
    std::istream& input;
    const bool prompting;
    std::function<bool()> mustEnd = [] { return false; };
    ExitCode result = ExitCode::Done;
};

/// Splits a line at blanks. Single and double quotes hold text together; a backslash takes the next character as it is,
/// but not between single quotes. Throws Failure (Usage) when a quote is left open.
std::vector<std::string> splitWords(std::string_view line);

} // namespace lumora_config
