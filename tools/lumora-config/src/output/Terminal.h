#pragma once

namespace lumora_config::Terminal {

/// Standard output is a terminal that shows colours, and the user has not declined them (NO_COLOR).
bool wantsColour();
/// Somebody types the commands.
bool isInteractive();

} // namespace lumora_config::Terminal
