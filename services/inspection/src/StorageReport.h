#pragma once

#include "Json.h"

namespace inspection {

/// Returns the state of the protected files of the profile. Reads every file. Any thread.
Json reportStorage();
/// Throws RequestError (Environment) if the last change of the user's settings is not on the disk. Any thread.
void requireUserFileWritten();

} // namespace inspection
