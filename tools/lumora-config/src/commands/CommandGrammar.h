#pragma once

#include "Command.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace lumora_config {

/// Which commands are understood: those of the command line, or those of the shell as well.
enum class CommandScope { CommandLine, Shell };

/// Adds every command of the scope to `app`; parsing then fills `command`, which must outlive the parse.
void addCommands(CLI::App& app, Command& command, CommandScope scope);

/// Reads one line of the shell, split into words already. Throws Failure (Usage); "help" gives Failure (Done) with the
/// text to show.
Command parseShellCommand(std::vector<std::string> words);

} // namespace lumora_config
