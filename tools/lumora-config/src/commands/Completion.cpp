#include "Completion.h"

#include "CommandGrammar.h"

#include <kyr/StringUtils.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <iterator>

namespace lumora_config {

namespace {

using KyrCoreUtils::toWideString;

std::vector<Candidate> listCommands(const CLI::App& root) {
    std::vector<Candidate> commands;
    for (const auto* command : listShownCommands(root)) {
        commands.push_back({command->get_name(), command->get_description()});
        for (const auto& alias : command->get_aliases()) {
            commands.push_back({alias, command->get_description()});
        }
    }
    return commands;
}

std::vector<Candidate> listOptions(const CommandLineCursor& cursor) {
    std::vector<Candidate> options;
    for (const auto* option : cursor.getOpenOptions()) {
        for (const auto& name : option->get_snames()) {
            options.push_back({'-' + name, option->get_description()});
        }
        for (const auto& name : option->get_lnames()) {
            options.push_back({"--" + name, option->get_description()});
        }
    }
    return options;
}

/// Returns what the grammar calls the value: "KEY", "FILE", "bash|fish|zsh".
std::string nameValue(const CLI::Option& option) {
    const auto type = option.get_type_name();
    return option.nonpositional() || type.find('|') != std::string::npos ? type : option.get_name(true);
}

std::vector<Candidate> splitWords(const std::string& alternatives) {
    std::vector<Candidate> words;
    for (const auto& word : CLI::detail::split(alternatives, '|')) {
        words.push_back({word, ""});
    }
    return words;
}

void addValues(Completion& completion, const CommandLineCursor& cursor, const CompletionNames& names) {
    const auto kind = nameValue(*cursor.getExpected());
    if (kind == "DIR") {
        completion.paths = Completion::Paths::Directories;
    } else if (kind.starts_with("FILE")) {
        completion.paths = Completion::Paths::Files;
    } else if (const auto end = cursor.getText().find('='); kind == "NAME=LIBRARY" && end != std::string::npos) {
        completion.paths = Completion::Paths::Files;
        completion.pathLead = cursor.getText().substr(0, end + 1);
    } else if (kind == "KEY" || kind == "PREFIX" || kind == "PATTERN") {
        completion.candidates = names.keys();
    } else if (kind == "NAME") {
        completion.candidates = names.stores();
    } else if (kind == "VALUE") {
        completion.candidates = names.values(cursor.getValue("KEY"));
    } else if (kind == "COMMAND") {
        completion.candidates = listCommands(cursor.getGrammar());
    } else if (kind.find('|') != std::string::npos) {
        completion.candidates = splitWords(kind);
    }
}

bool beginsWith(const std::string& text, const std::string& prefix) {
    const auto wideText = toWideString(text);
    const auto widePrefix = toWideString(prefix);
    return wideText.size() >= widePrefix.size() &&
           KyrCoreUtils::caseInsensitiveStringEquals(wideText.substr(0, widePrefix.size()), widePrefix);
}

/// A line break or a tab would look like another candidate.
std::string toField(std::string text) {
    std::ranges::replace_if(
        text, [](char c) { return c == '\n' || c == '\r' || c == '\t'; }, ' ');
    return text;
}

} // namespace

std::string Completion::toString() const {
    std::string lines = paths == Paths::Files ? ":files" : paths == Paths::Directories ? ":directories" : ":none";
    if (paths != Paths::None && !pathLead.empty()) {
        lines += '\t' + toField(pathLead);
    }
    lines += '\n';
    for (const auto& candidate : candidates) {
        lines += toField(candidate.text) + '\t' + toField(candidate.description) + '\n';
    }
    return lines;
}

Completion complete(const CommandLineCursor& cursor, const CompletionNames& names) {
    Completion completion;
    const auto& text = cursor.getText();
    if (cursor.mayBeOption() && text.starts_with('-')) {
        completion.candidates = listOptions(cursor);
    } else if (cursor.getExpected() != nullptr) {
        addValues(completion, cursor, names);
    } else if (&cursor.getCommand() == &cursor.getGrammar()) {
        completion.candidates = listCommands(cursor.getGrammar());
    }
    std::erase_if(completion.candidates, [&](const Candidate& candidate) { return !beginsWith(candidate.text, text); });
    completion.pathLead.insert(0, cursor.getLead());
    for (auto& candidate : completion.candidates) {
        candidate.text.insert(0, cursor.getLead());
    }
    return completion;
}

} // namespace lumora_config
