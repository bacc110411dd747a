#pragma once

#include <string>

namespace CLI {
class App;
class ParseError;
} // namespace CLI

namespace lumora_config {

/// Returns the message for a command line that `grammar` has refused with `error`. Names the word that the grammar does
/// not know, and the closest commands or options that it knows.
std::string describeUsage(const CLI::App& grammar, const CLI::ParseError& error);

/// Returns the help of a command, or of the whole grammar if `command` is empty. Throws Failure (Usage) for an unknown
/// command.
std::string getHelp(const CLI::App& grammar, const std::string& command);

} // namespace lumora_config
