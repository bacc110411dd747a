#pragma once

#include "Session.h"
#include "output/Failure.h"

#include <functional>
#include <istream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace lumora_config {

/// Reads one command per line and runs it, until "quit", the end of the input, or a failure to write an answer. Skips
/// empty lines and lines that begin with "#". A failing command does not end the shell. Main thread.
class Shell {
public:
    /// If `interactive` is true, prints a prompt on standard error.
    Shell(Session& commandSession, std::istream& commands, bool interactive);

    /// Calls `question` before each line. The shell ends, as at the end of its input, if it returns true.
    void endWhen(std::function<bool()> question) { mustEnd = std::move(question); }

    /// Returns the exit code of the first failure, or Done.
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

/// Splits a line at blanks. Single and double quotes enclose one word. A backslash escapes the next character, except
/// in single quotes. Throws Failure (Usage) if a quote is not closed.
std::vector<std::string> splitWords(std::string_view line);

} // namespace lumora_config
