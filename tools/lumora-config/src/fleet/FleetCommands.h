#pragma once

#include "commands/CommandGrammar.h"
#include "output/Printer.h"

#include <string>

namespace lumora_config {

/// Runs the command "fleet" on the cluster that it names, with the plug-in from the folder `plugins`. Sensitive
/// values are masked unless `showSecrets` is true. `watch` returns after a signal. Throws Failure. Main thread.
void runFleetCommand(const Command& command, const std::string& plugins, bool showSecrets, Printer& printer);

} // namespace lumora_config
