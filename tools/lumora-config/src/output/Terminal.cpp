#include "Terminal.h"

#include <kyr/ProcessUtils.h>

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
    return KyrCoreUtils::ProcessUtils::isOutputTerminal() && environment("NO_COLOR").empty() &&
           environment("TERM") != "dumb";
}

bool isInteractive() {
    return KyrCoreUtils::ProcessUtils::isInputTerminal();
}

} // namespace lumora_config::Terminal
