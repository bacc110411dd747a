#pragma once

#include "CommandGrammar.h"
#include "CommandInput.h"
#include "output/Printer.h"
#include "output/SettingsDump.h"

#include <ConfigMap.h>

#include <string>

namespace lumora_config {

/// Returns the values that `dump` is asked for, named as by SettingsDump.
std::string nameDumpSource(const Command& command);

/// Carries out `dump` with the values of its source, which contain secrets: selects keys, leaves secrets out unless
/// they are to be shown, and prints or writes the rest. Throws Failure: NotFound if secrets would be written to a place
/// that others can read, Environment if the file cannot be written.
void finishDump(const Command& command, SettingsDump content, bool showSecrets, Printer& printer);

/// Returns the dump that `load` is asked for. Throws Failure (Environment) if it cannot be read.
SettingsDump readDump(const CommandInput& input, const std::string& path);

/// Returns the values to set, and counts in `summary` those that are left out. Throws Failure (NotFound) if one of them
/// cannot be set: then none is.
ZelUnified::ConfigMap collectValues(const SettingsDump& dump, bool forced, LoadSummary& summary);

} // namespace lumora_config
