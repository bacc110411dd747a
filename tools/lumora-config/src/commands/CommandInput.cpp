#include "CommandInput.h"

#include "output/Failure.h"

#include <kyr/EndSignals.h>

#include <array>

namespace lumora_config {

namespace {

using KyrCoreUtils::EndSignals;

constexpr std::size_t largestInput = std::size_t{64} << 20U;

std::string readStandardInput() {
    std::string text;
    std::array<char, 65536> buffer{};
    while (const auto length = EndSignals::readInput(buffer.data(), buffer.size())) {
        text.append(buffer.data(), length);
        if (text.size() > largestInput) {
            throw Failure(ExitCode::Environment, "standard input: larger than 64 MiB");
        }
    }
    if (EndSignals::getReceived() != 0) {
        throw Failure(ExitCode::Environment, "standard input: a signal arrived before its end");
    }
    return text;
}

} // namespace

std::string CommandInput::readValue() const {
    std::string value;
    if (readLine) {
        if (!readLine(value)) {
            throw Failure(ExitCode::NotFound, "standard input has no line with the value");
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
