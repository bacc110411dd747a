#pragma once

#include "ShellHistory.h"
#include "ShellTarget.h"
#include "output/Failure.h"
#include "terminal/LineEditor.h"

#include <memory>
#include <string>
#include <utility>

namespace lumora_config {

/// Reads one command per line from standard input and runs it, until "quit", the end of the input, a signal that asks
/// the program to end, or a failure to write an answer. Skips empty lines and lines that begin with "#". A failing
/// command does not end the shell. If a person types the commands, prints a prompt on standard error, edits the lines
/// with a LineEditor if there is one, and keeps a ShellHistory. Main thread.
class Shell {
public:
    /// The target must outlive the shell. `plugins` is the folder of the plug-in on the command line, or empty.
    Shell(ShellTarget& commandTarget, std::string plugins)
        : target(commandTarget), pluginDirectory(std::move(plugins)) {}

    /// Returns the exit code of the first failure, or Done.
    ExitCode run();

private:
    enum class Next { Continue, Quit };

    /// Returns null if there is no editor. Prints a warning if its module cannot be loaded.
    std::unique_ptr<LineEditor> openEditor();
    void runPlain();
    void runEdited(LineEditor& editor);
    /// Adds a line that has run to the history. Prints a warning if this is the first failure to write the file.
    void remember(const std::string& line, ShellHistory& history, LineEditor& editor);
    Next runLine(const std::string& line);
    void confirmWrites();
    /// Keeps the code of the first failure.
    void recordFailure(ExitCode code);

    ShellTarget& target;
    const std::string pluginDirectory;
    ExitCode result = ExitCode::Done;
    bool historyFailed = false;
};

} // namespace lumora_config
