#pragma once

#include <string_view>

namespace ZelUnified {

/// Where a log line comes from. An operation makes one of ZEL_HERE for the helpers that log on its behalf, so that the
/// line names the operation. The views are of literals.
struct LogPlace {
    const char* file;
    int line;
    std::string_view function;
};

} // namespace ZelUnified
