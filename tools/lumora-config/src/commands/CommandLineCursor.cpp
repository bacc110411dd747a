#include "CommandLineCursor.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <optional>
#include <utility>

namespace lumora_config {

namespace {

bool takesValue(const CLI::Option& option) {
    return option.get_items_expected_max() > 0;
}

/// Splits "--option=value".
std::pair<std::string, std::optional<std::string>> splitOption(const std::string& word) {
    const auto end = word.starts_with("--") ? word.find('=') : std::string::npos;
    if (end == std::string::npos) {
        return {word, std::nullopt};
    }
    return {word.substr(0, end), word.substr(end + 1)};
}

} // namespace

CommandLineCursor::CommandLineCursor(const CLI::App& grammar, const std::vector<std::string>& words)
    : root(&grammar), command(&grammar) {
    for (std::size_t i = 0; i + 1 < words.size(); ++i) {
        follow(words[i]);
    }
    finish(words.empty() ? std::string() : words.back());
}

void CommandLineCursor::follow(const std::string& word) {
    if (waiting != nullptr) {
        if (word != "=") {
            answered = std::exchange(waiting, nullptr);
            given[answered] = std::exchange(pairStart, {}) + word;
        }
        return;
    }
    if (word == "=" && isFirstOfPair()) {
        waiting = answered;
        pairStart = given[answered] + '=';
        return;
    }
    answered = nullptr;
    if (word == "--" && !onlyPositionals) {
        onlyPositionals = true;
    } else if (word.starts_with('-') && !onlyPositionals) {
        followOption(word);
    } else if (command == root) {
        const auto named = root->get_subcommands([&](const CLI::App* app) { return app->check_name(word); });
        command = named.empty() ? command : named.front();
    } else {
        if (const auto* positional = findPositional()) {
            given[positional] = word;
        }
        ++positionals;
    }
}

void CommandLineCursor::followOption(const std::string& word) {
    const auto [name, value] = splitOption(word);
    const auto* option = findOption(name);
    if (option == nullptr) {
        return;
    }
    given[option] = value.value_or("");
    if (takesValue(*option)) {
        (value ? answered : waiting) = option;
    }
}

void CommandLineCursor::finish(const std::string& word) {
    if (word == "=" && waiting == nullptr && isFirstOfPair()) {
        follow(word);
    }
    text = word;
    if (waiting != nullptr) {
        expected = waiting;
        optionValue = true;
        text = pairStart + (word == "=" ? "" : word);
        return;
    }
    const auto [name, value] = splitOption(word);
    if (value && !onlyPositionals) {
        expected = findOption(name);
        optionValue = true;
        text = *value;
        lead = name + '=';
        return;
    }
    expected = command == root ? nullptr : findPositional();
}

std::vector<const CLI::Option*> CommandLineCursor::getOpenOptions() const {
    const auto isOpen = [this](const CLI::Option* option) {
        const auto excludes = option->get_excludes();
        const bool excluded =
            std::ranges::any_of(excludes, [this](const CLI::Option* other) { return given.contains(other); });
        const bool repeatable = option->get_expected_max() > 1;
        return option->nonpositional() && !excluded && (repeatable || !given.contains(option));
    };
    auto open = command->get_options(isOpen);
    if (command == root) {
        return open;
    }
    for (const auto* option : root->get_options(isOpen)) {
        const bool isReplaced = std::ranges::any_of(command->get_options(), [&](const CLI::Option* other) {
            return other->nonpositional() && other->get_lnames() == option->get_lnames();
        });
        if (!isReplaced) {
            open.push_back(option);
        }
    }
    return open;
}

std::string CommandLineCursor::getValue(const std::string& name) const {
    const auto found = std::ranges::find_if(given, [&](const auto& entry) { return entry.first->check_name(name); });
    return found == given.end() ? std::string() : found->second;
}

bool CommandLineCursor::isGiven(const std::string& name) const {
    return std::ranges::any_of(given, [&](const auto& entry) { return entry.first->check_name(name); });
}

const CLI::Option* CommandLineCursor::findOption(const std::string& name) const {
    const auto* option = command->get_option_no_throw(name);
    if (option == nullptr) {
        option = root->get_option_no_throw(name);
    }
    return option;
}

bool CommandLineCursor::isFirstOfPair() const {
    return answered != nullptr && answered->get_type_name().find('=') != std::string::npos &&
           given.at(answered).find('=') == std::string::npos;
}

const CLI::Option* CommandLineCursor::findPositional() const {
    const auto all = command->get_options([](const CLI::Option* option) { return option->get_positional(); });
    return positionals < all.size() ? all[positionals] : nullptr;
}

} // namespace lumora_config
