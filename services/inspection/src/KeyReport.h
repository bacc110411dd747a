#pragma once

#include "Json.h"

#include <ConfigCatalogue.h>

namespace inspection {

/// Returns what the catalogue says about a key, as the program's `keys` prints it. Any thread.
Json showKey(const ZelUnified::ConfigKeys::KeyRow& row);

} // namespace inspection
