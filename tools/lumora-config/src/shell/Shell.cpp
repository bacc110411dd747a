#include "Shell.h"

#include "ShellCompletion.h"
#include "ShellWords.h"
#include "commands/CommandGrammar.h"

#include <kyr/EndSignals.h>
#include <kyr/FileUtils.h>
#include <kyr/ProcessUtils.h>

#include <array>
#include <iostream>
#include <istream>
#include <streambuf>
#include <system_error>
#include <utility>

namespace lumora_config {

using KyrCoreUtils::EndSignals;
using KyrCoreUtils::FileUtils;

namespace {

constexpr auto prompt = "lumora> ";
constexpr auto historyFile = "lumora-config-history";

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
    if (const auto editor = openEditor()) {
        runEdited(*editor);
    } else {
        runPlain();
    }
    confirmWrites();
    return result;
}

std::unique_ptr<LineEditor> Shell::openEditor() {
    const auto completeLine = [this](const std::string& line) { return completeShellLine(target, line); };
    try {
        return LineEditor::create(prompt, completeLine, pluginDirectory);
    } catch (const Failure& failure) {
        target.getPrinter().showWarning(std::string(failure.what()) + "; lines cannot be edited");
        return nullptr;
    }
}

void Shell::runPlain() {
    const bool interactive = KyrCoreUtils::ProcessUtils::isInputTerminal();
    StandardInput buffer;
    std::istream input(&buffer);
    target.getInput().setLineReader([&input](std::string& text) { return bool(std::getline(input, text)); });
    std::string line;
    do {
        if (interactive) {
            std::cerr << prompt << std::flush;
        }
    } while (!mustEnd() && std::getline(input, line) && !mustEnd() && runLine(line) == Next::Continue &&
             target.getPrinter().canPrint());
    target.getInput().setLineReader({});
}

void Shell::runEdited(LineEditor& editor) {
    ShellHistory history(FileUtils::getStateDirectory() + FileUtils::FileSeparator() + historyFile);
    for (const auto& line : history.getLines()) {
        editor.addToHistory(line);
    }
    target.getInput().setLineReader([&editor](std::string& text) {
        const auto line = editor.readLine();
        text = line.value_or("");
        return line.has_value();
    });
    while (!mustEnd() && target.getPrinter().canPrint()) {
        const auto line = editor.readLine();
        if (!line || runLine(*line) == Next::Quit) {
            break;
        }
        remember(*line, history, editor);
    }
    target.getInput().setLineReader({});
}

void Shell::remember(const std::string& line, ShellHistory& history, LineEditor& editor) {
    if (line.find_first_not_of(" \t") == std::string::npos) {
        return;
    }
    const auto isSecret = target.makeLineFilter();
    if (!isSecret(line)) {
        editor.addToHistory(line);
    }
    const int error = target.savesHistory() ? history.add(line, isSecret) : 0;
    if (error != 0 && !std::exchange(historyFailed, true)) {
        target.getPrinter().showWarning("the history of the shell is not saved: " +
                                        std::generic_category().message(error));
    }
}

/// Checks the writes of workers that no `wait` has confirmed.
void Shell::confirmWrites() {
    try {
        target.confirmWrites();
    } catch (const Failure& failure) {
        target.getPrinter().showFailure("shell", failure);
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
        const auto canRun = [this](const std::string& command) { return target.canRun(command); };
        auto command = parseShellCommand(std::move(words), canRun);
        command.pluginDirectory = pluginDirectory;
        if (command.name == "quit") {
            return Next::Quit;
        }
        target.run(command);
    } catch (const Failure& failure) {
        if (failure.getCode() == ExitCode::Done) {
            target.getPrinter().showText("help", failure.what());
            return Next::Continue;
        }
        target.getPrinter().showFailure(name, failure);
        recordFailure(failure.getCode());
    }
    return Next::Continue;
}

void Shell::recordFailure(ExitCode code) {
    if (result == ExitCode::Done) {
        result = code;
    }
}

} // namespace lumora_config
