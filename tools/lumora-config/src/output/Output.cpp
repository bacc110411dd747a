#include "Output.h"

#include "EscapedText.h"

#include <kyr/LockGuard.h>
#include <kyr/StandardStreams.h>

#include <cstdlib>
#include <utility>

namespace lumora_config {

using KyrCoreUtils::StandardStreams;

namespace {

std::string_view getEnvironment(const char* name) {
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

OutputForm describeStandardOutput() {
    auto form = describe(StandardStreams::Stream::Output);
    form.coloured = form.terminal && getEnvironment("NO_COLOR").empty() && getEnvironment("TERM") != "dumb";
    return form;
}

OutputForm describeStandardError() {
    return describe(StandardStreams::Stream::Error);
}

Output::Output(const OutputForm& outputForm, Writer bytesWriter) : form(outputForm), writer(std::move(bytesWriter)) {}

void Output::writeValue(std::string_view value, std::string_view remark) {
    auto line = form.terminal ? toOneLine(value) : std::string(value);
    line += remark;
    line += '\n';
    writeEscaped(line);
}

void Output::writeText(std::string_view text) {
    if (form.terminal) {
        writeEscaped(toVisibleLines(text));
    } else {
        writeEscaped(text);
    }
}

void Output::writeMessage(std::string_view message) {
    writeEscaped(toOneLine(message) + '\n');
}

void Output::writeEscaped(std::string_view text) {
    const KyrCoreUtils::LockGuard lock(mutex);
    if (error == 0) {
        error = writer(text);
    }
}

int Output::getError() const {
    const KyrCoreUtils::LockGuard lock(mutex);
    return error;
}

} // namespace lumora_config
