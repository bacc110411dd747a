#pragma once

#include "ShellTarget.h"
#include "terminal/LineEditor.h"

#include <string>

namespace lumora_config {

/// Returns what the last word of the shell's unfinished line may become: commands, options, keys, values and stores.
/// Returns nothing on a failure; never throws. Main thread.
LineCompletion completeShellLine(ShellTarget& target, const std::string& line) noexcept;

} // namespace lumora_config
