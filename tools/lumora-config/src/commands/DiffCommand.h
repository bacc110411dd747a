#pragma once

#include "CommandGrammar.h"
#include "CommandInput.h"
#include "output/Printer.h"
#include "output/SettingsDump.h"

#include <functional>
#include <string>

namespace lumora_config {

/// Returns the values of a profile, with secrets. `folder` is empty for the profile in use, and `source` names the
/// values as in SettingsDump.
using ProfileReader = std::function<SettingsDump(const std::string& folder, const std::string& source)>;

/// Compares the operands of `diff`: each is a dump, a report or a profile, and one of them may be "-", which is read
/// from `input`; a missing second operand means the profile
/// in use. Without operands compares the administrator's values of the profile in use with those in force. Throws
/// Failure: NotFound if they differ, Environment if one cannot be read.
void showDifferences(const Command& command, const ProfileReader& readProfile, const CommandInput& input,
                     bool showSecrets, Printer& printer);

} // namespace lumora_config
