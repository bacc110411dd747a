#include "Terminal.h"

#include <kyr/ProcessUtils.h>
#include <kyr/StandardStreams.h>

#include <cstdlib>
#include <string_view>

namespace lumora_config::Terminal {

using KyrCoreUtils::StandardStreams;

namespace {

std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value == nullptr ? std::string_view() : value;
}

OutputForm describe(StandardStreams::Stream stream) {
    OutputForm form;
    form.terminal = StandardStreams::isTerminal(stream);
    if (const auto columns = StandardStreams::getColumns(stream); columns != 0) {
        form.columns = columns;
    }
    return form;
}

} // namespace

OutputForm describeOutput() {
    auto form = describe(StandardStreams::Stream::Output);
    form.coloured = form.terminal && environment("NO_COLOR").empty() && environment("TERM") != "dumb";
    return form;
}

OutputForm describeError() {
    return describe(StandardStreams::Stream::Error);
}

bool isInteractive() {
    return KyrCoreUtils::ProcessUtils::isInputTerminal();
}

} // namespace lumora_config::Terminal
