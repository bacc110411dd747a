#pragma once

#include "../PosixCalls.h"

#define LOCK_EX 2
#define LOCK_NB 4

inline int flock(int /*descriptor*/, int /*operation*/) {
    return testing_host::failMissingCall("flock");
}
