#pragma once

#include "commands/CommandLine.h"
#include "output/Printer.h"

namespace lumora_config {

/// Runs the command "fleet" of the line on the cluster that it names. Sensitive values are masked unless the line shows
/// secrets. `watch` returns after a signal. Throws Failure. Main thread.
void runFleetCommand(const CommandLine& line, Printer& printer);

} // namespace lumora_config
