#pragma once

#include "PosixCalls.h"

struct passwd {
    char* pw_name;
};

inline passwd* getpwuid(uid_t /*user*/) {
    return testing_host::failMissingCall<passwd*>("getpwuid");
}
