#pragma once

#include <string_view>

namespace ZelUnified {

/// The source of a log line. An operation creates one from ZEL_HERE for the helpers that log on its behalf, so that the
/// line names the operation. The view refers to a literal.
struct LogPlace {
    const char* file;
    int line;
    std::string_view function;
};

} // namespace ZelUnified
