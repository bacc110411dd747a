#pragma once

#include "CommandGrammar.h"
#include "output/Printer.h"

#include <string>

namespace lumora_config {

/// Prints the text of `report`, or writes it to the file that the command names and reports that. Throws Failure
/// (Environment) if the file cannot be written.
void printOrWriteReport(const Command& command, const std::string& text, Printer& printer);

} // namespace lumora_config
