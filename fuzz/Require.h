#pragma once

#include <cstdlib>

namespace fuzz {

/// What must hold for any input. Ends the process otherwise, so that the fuzzer keeps the input.
inline void require(bool held) {
    if (!held) {
        std::abort();
    }
}

} // namespace fuzz
