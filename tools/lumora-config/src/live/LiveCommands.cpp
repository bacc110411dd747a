#include "LiveCommands.h"

#include "LiveBundle.h"
#include "LiveReplies.h"
#include "LiveSettings.h"
#include "commands/BundleCommand.h"
#include "commands/CommandInput.h"
#include "commands/DiffCommand.h"
#include "commands/ListSearch.h"
#include "commands/StorableCheck.h"
#include "output/Failure.h"

#include <kyr/StringUtils.h>

#include <map>
#include <string>

namespace lumora_config {

using KyrCoreUtils::toWideString;

namespace {

std::string describeMiss(const Command& command) {
    if (!command.store.empty()) {
        return "the store '" + command.store + "' does not hold";
    }
    return command.admin ? "no administrator's store holds" : "no store holds";
}

/// The list of a client has one store for each key, and no marks of sensitive keys.
bool canAnswer(const Command& command) {
    if (command.name == "report") {
        return command.htmlFile.empty() && (command.file.empty() || command.file == "-");
    }
    return command.name != "list" || (command.store.empty() && !command.sensitive);
}

} // namespace

LiveCommands::Body LiveCommands::find(const Command& command) {
    static const std::map<std::string, Body> bodies{{"get", &LiveCommands::get},
                                                    {"explain", &LiveCommands::explain},
                                                    {"list", &LiveCommands::list},
                                                    {"stores", &LiveCommands::stores},
                                                    {"report", &LiveCommands::showText},
                                                    {"dump", &LiveCommands::dump},
                                                    {"load", &LiveCommands::load},
                                                    {"diff", &LiveCommands::diff},
                                                    {"bundle", &LiveCommands::bundle},
                                                    {"log", &LiveCommands::showText},
                                                    {"set", &LiveCommands::change},
                                                    {"reset", &LiveCommands::change},
                                                    {"provision", &LiveCommands::change},
                                                    {"reset-provisioning", &LiveCommands::change},
                                                    {"remove-store", &LiveCommands::change}};
    const auto found = bodies.find(command.name);
    return found == bodies.end() || !canAnswer(command) ? nullptr : found->second;
}

bool LiveCommands::canRun(const Command& command) {
    return find(command) != nullptr;
}

void LiveCommands::run(const Command& command) {
    printer.showWarning("this is the running client, process " + std::to_string(client.getProcess()));
    try {
        if (const auto body = find(command); body != nullptr) {
            (this->*body)(command);
        }
    } catch (const nlohmann::json::exception&) {
        throw Failure(ExitCode::Environment, "the running client sends an unknown answer");
    }
}

void LiveCommands::get(const Command& command) {
    InspectionClient::Json request{
        {"verb", "get"}, {"key", command.key}, {"admin", command.admin}, {"showSecrets", showSecrets}};
    if (!command.store.empty()) {
        request["store"] = command.store;
    }
    const auto reading = toReading(client.ask(std::move(request)));
    if (!reading && command.fallback) {
        printer.showDefault(toWideString(command.key), toWideString(*command.fallback));
        return;
    }
    printer.showValue(toWideString(command.key), reading, command.origin);
    if (!reading) {
        throw Failure(ExitCode::NotFound, describeMiss(command) + " the key '" + command.key + "'");
    }
}

void LiveCommands::explain(const Command& command) {
    const auto explanation =
        toExplanation(client.ask({{"verb", "explain"}, {"key", command.key}, {"showSecrets", showSecrets}}));
    printer.showExplanation(explanation);
    if (!explanation.inForce) {
        throw Failure(ExitCode::NotFound, "no store holds the key '" + command.key + "'");
    }
}

void LiveCommands::list(const Command& command) {
    auto values = toList(client.ask({{"verb", "list"}, {"prefix", ""}, {"showSecrets", showSecrets}}));
    keepMatches(values, command, [](const std::wstring&) { return false; });
    printer.showList(values);
    if (values.empty()) {
        throw Failure(ExitCode::NotFound, describeEmptyList(command));
    }
}

void LiveCommands::stores(const Command& /*command*/) {
    printer.showStores(toStores(client.ask({{"verb", "stores"}})));
}

void LiveCommands::showText(const Command& command) {
    printer.showText(command.name, client.ask({{"verb", command.name}}).at("text"));
}

void LiveCommands::change(const Command& command) {
    const auto value = command.value == "-" ? CommandInput().readValue() : command.value;
    if (command.name == "set") {
        requireStorable(command.key, value, command.forced);
    }
    const auto reply = client.ask({{"verb", command.name},
                                   {"key", command.key},
                                   {"value", value},
                                   {"url", command.url},
                                   {"store", command.store},
                                   {"force", command.forced}});
    printer.showDone(command.name, reply.at("message"));
}

void LiveCommands::dump(const Command& command) {
    LiveSettings(client).dump(command, showSecrets, printer);
}

void LiveCommands::load(const Command& command) {
    LiveSettings(client).load(command, CommandInput(), printer);
}

/// Like a host of its own, compares secrets even if they are not printed.
void LiveCommands::diff(const Command& command) {
    const auto read = [this](const std::string& /*folder*/, const std::string& source) {
        return LiveSettings(client).read(source, true);
    };
    showDifferences(command, read, showSecrets, printer);
}

void LiveCommands::bundle(const Command& command) {
    writeBundle(
        command, showSecrets, [this] { return collectBundle(client); }, printer);
}

} // namespace lumora_config
