#pragma once

#include "CommandGrammar.h"
#include "Session.h"

#include <functional>
#include <map>
#include <string>

namespace lumora_config {

/// Runs one command and prints its answer. Throws Failure if the command finds nothing, is refused or cannot be
/// completed.
void runCommand(Session& session, const Command& command);

/// Returns false if the command leaves the profile as it is. A dry run of any command does.
bool changesProfile(const Command& command);

using CommandTable = std::map<std::string, std::function<void(Session&, const Command&)>>;

/// Each function returns the commands of one group by their names. The commands of these groups change nothing:
CommandTable getReadCommands();
CommandTable getKeyCommands();
CommandTable getDumpCommands();
CommandTable getDiffCommands();
CommandTable getReportCommands();
CommandTable getBundleCommands();
/// In these groups, a command may change the profile.
CommandTable getWriteCommands();
CommandTable getLoadCommands();
CommandTable getLifecycleCommands();
CommandTable getStorageCommands();

/// Converts an argument (UTF-8) to the wide text that the service expects.
std::wstring toWide(const std::string& text);
/// Prints the answer of a command that has no result to show.
void reportDone(Session& session, const Command& command, const std::string& message);
/// Prints the findings of `doctor`. Throws Failure (NotFound) if anything needs attention.
void showHealth(const HealthReport& report, Printer& printer);

} // namespace lumora_config
