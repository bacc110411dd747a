#pragma once

#include "Command.h"
#include "Session.h"

#include <functional>
#include <map>
#include <string>

namespace lumora_config {

using CommandBody = std::function<void(Session&, const Command&)>;
using CommandTable = std::map<std::string, CommandBody>;

/// Each function adds the commands of one group.
void addReadCommands(CommandTable& table);
void addKeyCommands(CommandTable& table);
void addWriteCommands(CommandTable& table);
void addReportCommands(CommandTable& table);
void addLifecycleCommands(CommandTable& table);
void addStorageCommands(CommandTable& table);

/// Converts an argument (UTF-8) to the wide text that the service expects.
std::wstring wide(const std::string& text);
/// Prints the answer of a command that has no result to show.
void reportDone(Session& session, const Command& command, const std::string& message);
/// Prints the findings of `doctor`. Throws Failure (NotFound) if anything needs attention.
void showHealth(const HealthReport& report, Printer& printer);

} // namespace lumora_config
