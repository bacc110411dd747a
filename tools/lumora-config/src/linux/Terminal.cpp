#include "Terminal.h"

#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace lumora_config::Terminal {

namespace {

std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string_view() : value;
}

} // namespace

bool wantsColour() {
    return isatty(STDOUT_FILENO) != 0 && environment("NO_COLOR").empty() && environment("TERM") != "dumb";
}

bool isInteractive() {
    return isatty(STDIN_FILENO) != 0;
}

} // namespace lumora_config::Terminal
