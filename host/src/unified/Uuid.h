#pragma once

#include <string>

namespace ZelUnified {

/// Returns a random version 4 UUID in lower case. Throws std::runtime_error if no random bytes are available.
std::string makeRandomUuid();

} // namespace ZelUnified
