#pragma once

#include "Output.h"

namespace lumora_config::Terminal {

/// Standard output: coloured if it is a terminal that shows colours, and the user has not declined them (NO_COLOR).
OutputForm describeOutput();
/// Standard error, which is never coloured.
OutputForm describeError();
/// Somebody types the commands.
bool isInteractive();

} // namespace lumora_config::Terminal
