#include "Shell.h"

#include "CommandGrammar.h"
#include "CommandTable.h"

#include <kyr/EndSignals.h>
#include <kyr/ProcessUtils.h>

#include <array>
#include <iostream>
#include <istream>
#include <streambuf>
#include <utility>

namespace lumora_config {

using KyrCoreUtils::EndSignals;

namespace {

/// A stream buffer over standard input that reports the end of the input when a signal asks the program to end.
class StandardInput final : public std::streambuf {
private:
    int_type underflow() override {
        const auto length = EndSignals::readInput(buffer.data(), buffer.size());
        if (length == 0) {
            return traits_type::eof();
        }
        setg(buffer.data(), buffer.data(), buffer.data() + length);
        return traits_type::to_int_type(buffer.front());
    }

    std::array<char, 4096> buffer{};
};

bool mustEnd() {
    return EndSignals::getReceived() != 0;
}

} // namespace

ExitCode Shell::run() {
    const bool interactive = KyrCoreUtils::ProcessUtils::isInputTerminal();
    StandardInput buffer;
    std::istream input(&buffer);
    std::string line;
    do {
        if (interactive) {
            std::cerr << "lumora> " << std::flush;
        }
    } while (!mustEnd() && std::getline(input, line) && !mustEnd() && runLine(line) == Next::Continue &&
             session.getPrinter().isHeard());
    confirmWrites();
    return result;
}

/// Checks the writes of workers that no `wait` has confirmed.
void Shell::confirmWrites() {
    try {
        session.confirmWrites();
    } catch (const Failure& failure) {
        session.getPrinter().showFailure("shell", failure);
        recordFailure(failure.getCode());
    }
}

Shell::Next Shell::runLine(const std::string& line) {
    std::string name;
    try {
        auto words = splitWords(line);
        if (words.empty() || words.front().starts_with('#')) {
            return Next::Continue;
        }
        name = words.front();
        const auto command = parseShellCommand(std::move(words));
        if (command.name == "quit") {
            return Next::Quit;
        }
        runCommand(session, command);
    } catch (const Failure& failure) {
        if (failure.getCode() == ExitCode::Done) {
            session.getPrinter().showText("help", failure.what());
            return Next::Continue;
        }
        session.getPrinter().showFailure(name, failure);
        recordFailure(failure.getCode());
    }
    return Next::Continue;
}

void Shell::recordFailure(ExitCode code) {
    if (result == ExitCode::Done) {
        result = code;
    }
}

std::vector<std::string> splitWords(std::string_view line) {
    std::vector<std::string> words;
    std::string word;
    bool inWord = false; // True inside an empty quoted word, too.
    char quote = '\0';
    const auto endWord = [&] {
        if (inWord) {
            words.push_back(std::exchange(word, {}));
        }
        inWord = false;
    };
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (quote == '\0' && (c == ' ' || c == '\t' || c == '\r')) {
            endWord();
            continue;
        }
        inWord = true;
        if (c == '\\' && quote != '\'' && i + 1 < line.size()) {
            word += line[++i];
        } else if (quote != '\0' ? c == quote : c == '"' || c == '\'') {
            quote = quote == '\0' ? c : '\0';
        } else {
            word += c;
        }
    }
    if (quote != '\0') {
        throw Failure(ExitCode::Usage, "a quote is not closed");
    }
    endWord();
    return words;
}

} // namespace lumora_config
