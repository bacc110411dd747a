#pragma once

#include "Command.h"
#include "Session.h"

namespace lumora_config {

/// Runs one command and prints its answer. Throws Failure if the command finds nothing, is refused or cannot be
/// completed.
void runCommand(Session& session, const Command& command);

} // namespace lumora_config
