#include "LiveCommands.h"

#include "LiveBundle.h"
#include "LiveReplies.h"
#include "LiveSettings.h"
#include "commands/BundleCommand.h"
#include "commands/CommandTable.h"
#include "commands/DiffCommand.h"
#include "commands/KeyCommands.h"
#include "commands/ListSearch.h"
#include "commands/ReportFile.h"
#include "commands/StorableCheck.h"
#include "output/ChainPage.h"
#include "output/Failure.h"
#include "output/TimeText.h"
#include "stores/KnownKeys.h"
#include "stores/XmlSettings.h"

#include <kyr/FileUtils.h>
#include <kyr/ProcessUtils.h>
#include <kyr/StringUtils.h>

#include <chrono>
#include <map>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

namespace lumora_config {

using Json = InspectionClient::Json;

namespace {

std::string describeMiss(const Command& command) {
    if (!command.store.empty()) {
        return "the store '" + command.store + "' does not hold";
    }
    return command.admin ? "no administrator's store holds" : "no store holds";
}

} // namespace

LiveCommands::Body LiveCommands::find(const std::string& name) {
    static const std::map<std::string, Body> bodies{{"get", &LiveCommands::get},
                                                    {"explain", &LiveCommands::explain},
                                                    {"list", &LiveCommands::list},
                                                    {"keys", &LiveCommands::keys},
                                                    {"describe", &LiveCommands::describe},
                                                    {"stores", &LiveCommands::stores},
                                                    {"report", &LiveCommands::report},
                                                    {"log", &LiveCommands::log},
                                                    {"doctor", &LiveCommands::doctor},
                                                    {"set", &LiveCommands::set},
                                                    {"memory", &LiveCommands::set},
                                                    {"mdm", &LiveCommands::setManaged},
                                                    {"dump", &LiveCommands::dump},
                                                    {"load", &LiveCommands::load},
                                                    {"diff", &LiveCommands::diff},
                                                    {"bundle", &LiveCommands::bundle},
                                                    {"reset", &LiveCommands::change},
                                                    {"provision", &LiveCommands::change},
                                                    {"reset-provisioning", &LiveCommands::change},
                                                    {"remove-store", &LiveCommands::change},
                                                    {"refresh", &LiveCommands::change}};
    const auto found = bodies.find(name);
    return found == bodies.end() ? nullptr : found->second;
}

bool LiveCommands::canRun(const std::string& name) {
    return find(name) != nullptr;
}

void LiveCommands::announce() const {
    printer.showWarning("this is the running client, process " + std::to_string(client.getProcess()));
}

void LiveCommands::run(const Command& command) {
    try {
        if (const auto body = find(command.name); body != nullptr) {
            (this->*body)(command);
        }
    } catch (const nlohmann::json::exception&) {
        throw Failure(ExitCode::Environment, "the running client sends an unknown answer");
    }
}

void LiveCommands::get(const Command& command) {
    Json request{{"verb", "get"}, {"key", command.key}, {"admin", command.admin}, {"showSecrets", showSecrets}};
    if (!command.store.empty()) {
        request["store"] = command.store;
    }
    auto reading = toReading(client.ask(std::move(request)));
    if (!reading && command.fallback) {
        printer.showDefault(toWide(command.key), toWide(*command.fallback));
        return;
    }
    if (reading && (command.origin || printer.alwaysShowsOrigin())) {
        makeOriginFinder().locate(toWide(command.key), *reading);
    }
    printer.showValue(toWide(command.key), reading, command.origin);
    if (!reading) {
        suggestKeys(command.key);
        throw Failure(ExitCode::NotFound, describeMiss(command) + " the key '" + spell(command.key) + "'");
    }
}

void LiveCommands::explain(const Command& command) {
    auto explanation =
        toExplanation(client.ask({{"verb", "explain"}, {"key", command.key}, {"showSecrets", showSecrets}}));
    makeOriginFinder().locate(explanation);
    printer.showExplanation(explanation);
    if (!explanation.inForce) {
        suggestKeys(command.key);
        throw Failure(ExitCode::NotFound, "no store holds the key '" + spell(command.key) + "'");
    }
}

void LiveCommands::list(const Command& command) {
    auto values = toList(client.ask(
        {{"verb", "list"}, {"store", command.store}, {"sensitive", command.sensitive}, {"showSecrets", showSecrets}}));
    // The client has left out all keys that are not sensitive.
    removeMismatches(values, command, [](const std::wstring&) { return true; });
    printer.showList(values);
    if (values.empty()) {
        throw Failure(ExitCode::NotFound, describeEmptyList(command));
    }
}

void LiveCommands::keys(const Command& command) {
    showMatchingKeys(toKeys(client.ask({{"verb", "keys"}})), command, printer);
}

void LiveCommands::describe(const Command& command) {
    try {
        printer.showDescription(
            toDescription(client.ask({{"verb", "describe"}, {"key", command.key}, {"showSecrets", showSecrets}})));
    } catch (const Failure& failure) {
        if (failure.getCode() == ExitCode::NotFound) {
            suggestKeys(command.key);
        }
        throw;
    }
}

void LiveCommands::stores(const Command& /*command*/) {
    printer.showStores(toStores(client.ask({{"verb", "stores"}})));
}

void LiveCommands::report(const Command& command) {
    const auto text =
        command.htmlFile.empty() ? client.ask({{"verb", "report"}}).at("text").get<std::string>() : makePage();
    printOrWriteReport(command, text, printer);
}

void LiveCommands::log(const Command& command) {
    printer.showText(command.name, client.ask({{"verb", "log"}}).at("text"));
}

void LiveCommands::doctor(const Command& /*command*/) {
    showHealth(examine(Doctor::Owners::Named), printer);
}

void LiveCommands::set(const Command& command) {
    const bool isInput = command.name == "set" && command.value == "-";
    const auto value = isInput ? input.readValue() : command.value;
    requireStorable(command.key, value, command.forced);
    suggestKeys(command.key);
    auto given = command;
    given.value = value;
    change(given);
}

void LiveCommands::setManaged(const Command& command) {
    const auto document = readWholeFile(command.file);
    auto sensitiveKeys = nlohmann::json::array();
    // A document that is not XML would empty the store without an error.
    for (const auto& setting : parseXmlSettings(document, command.file)) {
        if (setting.sensitive) {
            sensitiveKeys.push_back(KyrCoreUtils::toString(setting.key));
        }
    }
    const auto reply = client.ask({{"verb", command.name}, {"document", document}, {"keys", sensitiveKeys}});
    printer.showDone(command.name, reply.at("message"));
}

void LiveCommands::change(const Command& command) {
    const auto reply = client.ask({{"verb", command.name},
                                   {"key", command.key},
                                   {"value", command.value},
                                   {"url", command.url},
                                   {"store", command.store},
                                   {"force", command.forced}});
    printer.showDone(command.name, reply.at("message"));
}

std::string LiveCommands::makePage() {
    auto findings = readChain(showSecrets);
    findings.profile = KyrCoreUtils::FileUtils::getConfigDirectory();
    findings.host = KyrCoreUtils::ProcessUtils::getHostName();
    findings.madeAt = formatTime(std::chrono::system_clock::now());
    findings.showsSecrets = showSecrets;
    return renderChainPage(findings);
}

ChainFindings LiveCommands::readChain(bool withSecrets) {
    auto findings = toChain(client.ask({{"verb", "explanations"}, {"showSecrets", withSecrets}}));
    auto origins = makeOriginFinder();
    for (auto& key : findings.keys) {
        origins.locate(key);
    }
    findings.health = examine(Doctor::Owners::Masked);
    return findings;
}

HealthReport LiveCommands::examine(Doctor::Owners owners) {
    const auto reply = client.ask({{"verb", "health"}});
    auto health = Doctor(Doctor::Lock::NotHeld, owners).examine();
    for (const auto& item : reply.at("items")) {
        if (const auto writes = item.value("writes", std::string()); !writes.empty()) {
            Doctor::addWrites(health, item.at("path"), writes);
        }
    }
    return health;
}

void LiveCommands::suggestKeys(const std::string& key) {
    if (findKeyFacts(toWide(key)) || toReading(client.ask({{"verb", "get"}, {"key", key}}))) {
        return;
    }
    std::vector<std::string> inUse;
    for (const auto& listed : toList(client.ask({{"verb", "list"}}))) {
        inUse.push_back(KyrCoreUtils::toString(listed.key));
    }
    lumora_config::suggestKeys(printer, key, inUse);
}

OriginFinder LiveCommands::makeOriginFinder() {
    return {toStores(client.ask({{"verb", "stores"}})), KyrCoreUtils::FileUtils::getConfigDirectory()};
}

void LiveCommands::dump(const Command& command) {
    LiveSettings(client).dump(command, showSecrets, printer);
}

void LiveCommands::load(const Command& command) {
    LiveSettings(client).load(command, input, printer);
}

/// Compares secrets too, even if they are not printed.
void LiveCommands::diff(const Command& command) {
    const auto read = [this](const std::string& folder, const std::string& source) {
        if (!folder.empty()) {
            throw Failure(ExitCode::Usage, folder + ": the shell uses a profile already; compare profiles outside it");
        }
        return LiveSettings(client).read(source, true);
    };
    showDifferences(command, read, input, showSecrets, printer);
}

void LiveCommands::bundle(const Command& command) {
    writeBundle(
        command, showSecrets, [this] { return collectBundle(client, readChain(false)); }, printer);
}

} // namespace lumora_config
