#pragma once

#include "Command.h"
#include "Session.h"

namespace lumora_config {

/// Runs one command and prints its answer. Throws Failure when it finds nothing, is refused or can't be done.
void runCommand(Session& session, const Command& command);

} // namespace lumora_config
