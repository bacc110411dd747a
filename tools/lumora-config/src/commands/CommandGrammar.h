#pragma once

#include "Command.h"

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace lumora_config {

/// The set of accepted commands: those of the command line only, or those of the shell too.
enum class CommandScope { CommandLine, Shell };

/// Adds every command of the scope to `app`. Parsing then writes to `command`, which must outlive the parse.
void addCommands(CLI::App& app, Command& command, CommandScope scope);

/// Parses one line of the shell, already split into words. Throws Failure: Usage with a message; Done with the help
/// text for "help".
Command parseShellCommand(std::vector<std::string> words);

} // namespace lumora_config
