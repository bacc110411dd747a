#include "Shell.h"

#include "CommandGrammar.h"
#include "Commands.h"

#include <iostream>
#include <optional>
#include <utility>

namespace lumora_config {

Shell::Shell(Session& commandSession, std::istream& commands, bool interactive)
    : session(commandSession), input(commands), prompting(interactive) {}

ExitCode Shell::run() {
    std::string line;
    for (;;) {
        if (prompting) {
            std::cerr << "lumora> " << std::flush;
        }
        if (!std::getline(input, line) || runLine(line) == Next::Quit) {
            return result;
        }
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
        remember(failure.getCode());
    }
    return Next::Continue;
}

void Shell::remember(ExitCode code) {
    if (result == ExitCode::Done) {
        result = code;
    }
}

std::vector<std::string> splitWords(std::string_view line) {
    std::vector<std::string> words;
    std::optional<std::string> word;
    char quote = '\0';
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (c == '\\' && quote != '\'' && i + 1 < line.size()) {
            word = word.value_or("") + line[++i];
        } else if (quote != '\0' ? c == quote : c == '"' || c == '\'') {
            quote = quote == '\0' ? c : '\0';
            word = word.value_or("");
        } else if (quote == '\0' && (c == ' ' || c == '\t' || c == '\r')) {
            if (word) {
                words.push_back(std::move(*word));
                word.reset();
            }
        } else {
            word = word.value_or("") + c;
        }
    }
    if (quote != '\0') {
        throw Failure(ExitCode::Usage, "a quote is left open");
    }
    if (word) {
        words.push_back(std::move(*word));
    }
    return words;
}

} // namespace lumora_config
