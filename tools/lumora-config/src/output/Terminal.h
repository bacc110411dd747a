#pragma once

#include "Output.h"

namespace lumora_config::Terminal {

/// Returns the form of standard output: coloured if it is a terminal with colours and NO_COLOR is not set.
OutputForm describeOutput();
/// Returns the form of standard error, which is never coloured.
OutputForm describeError();
/// Returns true if a person types the commands.
bool isInteractive();

} // namespace lumora_config::Terminal
