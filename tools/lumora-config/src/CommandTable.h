#pragma once

#include "Command.h"
#include "Session.h"

#include <functional>
#include <map>
#include <string>

namespace lumora_config {

using CommandBody = std::function<void(Session&, const Command&)>;
using CommandTable = std::map<std::string, CommandBody>;

/// Each group enters its commands.
void addReadCommands(CommandTable& table);
void addWriteCommands(CommandTable& table);
void addReportCommands(CommandTable& table);
void addLifecycleCommands(CommandTable& table);
void addStorageCommands(CommandTable& table);

/// Arguments come as UTF-8, the service wants wide text.
std::wstring wide(const std::string& text);
/// The answer of a command that has nothing to show.
void reportDone(Session& session, const Command& command, const std::string& message);
/// Prints what `doctor` has found. Throws Failure (NotFound) if anything needs attention.
void showHealth(const HealthReport& report, Printer& printer);

} // namespace lumora_config
