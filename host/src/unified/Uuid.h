#pragma once

#include <string>

namespace ZelUnified {

/// A random version 4 UUID, lower case. Throws std::runtime_error when the machine has no random bytes to give.
std::string makeRandomUuid();

} // namespace ZelUnified
