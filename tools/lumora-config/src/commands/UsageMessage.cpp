#include "UsageMessage.h"

#include "CommandGrammar.h"
#include "output/Failure.h"
#include "stores/ClosestNames.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace lumora_config {

namespace {

std::vector<std::string> nameCommands(const CLI::App& grammar) {
    std::vector<std::string> names;
    for (const auto* command : listShownCommands(grammar)) {
        names.push_back(command->get_name());
        const auto& aliases = command->get_aliases();
        names.insert(names.end(), aliases.begin(), aliases.end());
    }
    return names;
}

void addNames(std::vector<std::string>& names, const CLI::App& app) {
    for (const auto* option : app.get_options()) {
        for (const auto& name : option->get_lnames()) {
            names.push_back(name);
        }
    }
}

/// Returns the names, without dashes, of the options that are accepted here: the common ones and those of the command.
std::vector<std::string> nameOptions(const CLI::App& grammar) {
    std::vector<std::string> names;
    for (const auto* command : grammar.get_subcommands()) {
        addNames(names, *command);
    }
    addNames(names, grammar);
    return names;
}

std::string describeUnknownCommand(const CLI::App& grammar, const std::string& word) {
    return "there is no command '" + word + "'" + suggest(word, nameCommands(grammar));
}

std::string describeUnknownOption(const CLI::App& grammar, const std::string& word) {
    const auto name = word.substr(0, word.find('='));
    // The dashes are no reason to call two names similar.
    auto closest = closestNames(name.substr(std::min(name.find_first_not_of('-'), name.size())), nameOptions(grammar));
    std::ranges::for_each(closest, [](std::string& option) { option.insert(0, "--"); });
    return "there is no option '" + name + "'" + suggestNames(closest);
}

} // namespace

std::string describeUsage(const CLI::App& grammar, const CLI::ParseError& error) {
    const auto unknown = grammar.remaining(true);
    const auto option = std::ranges::find_if(
        unknown, [](const std::string& word) { return word.size() > 1 && word.starts_with('-') && word != "--"; });
    if (option != unknown.end()) {
        return describeUnknownOption(grammar, *option);
    }
    if (grammar.get_subcommands().empty()) {
        return unknown.empty() ? "no command is given" : describeUnknownCommand(grammar, unknown.front());
    }
    return error.what();
}

std::string getHelp(const CLI::App& grammar, const std::string& command) {
    if (command.empty()) {
        // App::help() would delegate to the parsed command.
        return grammar.get_formatter()->make_help(&grammar, grammar.get_name(), CLI::AppFormatMode::Normal);
    }
    const auto named = grammar.get_subcommands([&](const CLI::App* app) { return app->check_name(command); });
    if (named.empty()) {
        throw Failure(ExitCode::Usage, describeUnknownCommand(grammar, command));
    }
    return named.front()->help(grammar.get_name());
}

} // namespace lumora_config
