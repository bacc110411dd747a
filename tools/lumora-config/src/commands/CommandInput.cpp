#include "CommandInput.h"

#include "output/Failure.h"

#include <kyr/EndSignals.h>
#include <kyr/HiddenInput.h>
#include <kyr/ProcessUtils.h>
#include <kyr/StandardStreams.h>

#include <array>

namespace lumora_config {

namespace {

using KyrCoreUtils::EndSignals;
using KyrCoreUtils::StandardStreams;

constexpr std::size_t largestInput = std::size_t{64} << 20U;

constexpr auto noLine = "standard input has no line with the value";

void requireNoSignal() {
    if (EndSignals::getReceived() != 0) {
        throw Failure(ExitCode::Environment, "standard input: a signal arrived before its end");
    }
}

std::string readStandardInput() {
    std::string text;
    std::array<char, 65536> buffer{};
    while (const auto length = EndSignals::readInput(buffer.data(), buffer.size())) {
        text.append(buffer.data(), length);
        if (text.size() > largestInput) {
            throw Failure(ExitCode::Environment, "standard input: larger than 64 MiB");
        }
    }
    requireNoSignal();
    return text;
}

/// Returns the line that a person types, with its line feed. The terminal does not show it.
std::string readTypedLine() {
    const KyrCoreUtils::HiddenInput hidden;
    StandardStreams::write(StandardStreams::Stream::Error, "value (not shown): ");
    std::string line;
    std::array<char, 4096> buffer{};
    // A terminal returns at most one line for each read.
    while (!line.ends_with('\n')) {
        const auto length = EndSignals::readInput(buffer.data(), buffer.size());
        if (length == 0) {
            break;
        }
        line.append(buffer.data(), length);
    }
    requireNoSignal();
    if (line.empty()) {
        throw Failure(ExitCode::NotFound, noLine);
    }
    return line;
}

} // namespace

std::string CommandInput::readValue() const {
    std::string value;
    if (KyrCoreUtils::ProcessUtils::isInputTerminal()) {
        value = readTypedLine();
    } else if (readLine) {
        if (!readLine(value)) {
            throw Failure(ExitCode::NotFound, noLine);
        }
        value += '\n';
    } else {
        value = readStandardInput();
    }
    if (value.ends_with('\n')) {
        value.pop_back();
        if (value.ends_with('\r')) {
            value.pop_back();
        }
    }
    return value;
}

std::string CommandInput::readAll() const {
    if (readLine) {
        throw Failure(ExitCode::Usage,
                      "in the shell, '-' cannot be read as a file: the commands are on standard input");
    }
    return readStandardInput();
}

} // namespace lumora_config
