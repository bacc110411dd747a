#pragma once

#include <cstdlib>

namespace fuzz {

/// Ends the process if the condition is false, so that the fuzzer keeps the input.
inline void require(bool held) {
    if (!held) {
        std::abort();
    }
}

} // namespace fuzz
