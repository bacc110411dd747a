#include "Shell.h"

#include "CommandGrammar.h"
#include "Commands.h"

#include <iostream>
#include <utility>

namespace lumora_config {

Shell::Shell(Session& commandSession, std::istream& commands, bool interactive)
    : session(commandSession), input(commands), prompting(interactive) {}

ExitCode Shell::run() {
    std::string line;
    do {
        if (prompting) {
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
        remember(failure.getCode());
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
        throw Failure(ExitCode::Usage, "a quote is left open");
    }
    endWord();
    return words;
}

} // namespace lumora_config
