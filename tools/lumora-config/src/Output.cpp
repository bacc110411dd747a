#include "Output.h"

#include "EscapedText.h"

#include <utility>

namespace lumora_config {

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
    const std::lock_guard lock(mutex);
    if (error == 0) {
        error = writer(text);
    }
}

int Output::getError() const {
    const std::lock_guard lock(mutex);
    return error;
}

} // namespace lumora_config
